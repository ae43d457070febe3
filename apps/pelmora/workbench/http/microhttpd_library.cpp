// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/http/microhttpd_library.h"

#include "loading/loaded_library.h"

namespace pelmora::cli::http {
namespace {

MicrohttpdLibrary load() {
  const LoadedLibrary library(PELMORA_MICROHTTPD, "libmicrohttpd", "the workbench cannot start");
  MicrohttpdLibrary found{};
  library.find("MHD_start_daemon", found.MHD_start_daemon);
  library.find("MHD_stop_daemon", found.MHD_stop_daemon);
  library.find("MHD_run_wait", found.MHD_run_wait);
  library.find("MHD_get_daemon_info", found.MHD_get_daemon_info);
  library.find("MHD_get_connection_info", found.MHD_get_connection_info);
  library.find("MHD_get_connection_values_n", found.MHD_get_connection_values_n);
  library.find("MHD_create_response_from_buffer", found.MHD_create_response_from_buffer);
  library.find("MHD_add_response_header", found.MHD_add_response_header);
  library.find("MHD_queue_response", found.MHD_queue_response);
  library.find("MHD_destroy_response", found.MHD_destroy_response);
  return found;
}

}  // namespace

const MicrohttpdLibrary& microhttpdLibrary() {
  static const MicrohttpdLibrary library = load();
  return library;
}

}  // namespace pelmora::cli::http
