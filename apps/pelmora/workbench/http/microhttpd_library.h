// The library that speaks HTTP, loaded when the workbench starts: it brings a library of
// cryptography along, whose start takes longer than most commands.
// SPDX-License-Identifier: MIT
#pragma once

#include <microhttpd.h>

namespace pelmora::cli::http {

// Its functions that the server needs, under their own names.
struct MicrohttpdLibrary {
  decltype(&::MHD_start_daemon) MHD_start_daemon;
  decltype(&::MHD_stop_daemon) MHD_stop_daemon;
  decltype(&::MHD_run_wait) MHD_run_wait;
  decltype(&::MHD_get_daemon_info) MHD_get_daemon_info;
  decltype(&::MHD_get_connection_info) MHD_get_connection_info;
  decltype(&::MHD_get_connection_values_n) MHD_get_connection_values_n;
  decltype(&::MHD_create_response_from_buffer) MHD_create_response_from_buffer;
  decltype(&::MHD_add_response_header) MHD_add_response_header;
  decltype(&::MHD_queue_response) MHD_queue_response;
  decltype(&::MHD_destroy_response) MHD_destroy_response;
};

// Errors: calibration::Unusable if it cannot be loaded. Safe from several threads.
[[nodiscard]] const MicrohttpdLibrary& microhttpdLibrary();

}  // namespace pelmora::cli::http
