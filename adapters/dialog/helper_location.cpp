// SPDX-License-Identifier: MIT
#include "adapters/dialog/helper_location.h"

#include <dlfcn.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

namespace pelmora::dialog {

std::string helperBesideLibrary() {
  static const char marker = 0;  // its address lies in this library
  Dl_info library{};
  if (dladdr(&marker, &library) == 0 || library.dli_fname == nullptr) return {};
  std::error_code failure;
  const auto path = std::filesystem::canonical(library.dli_fname, failure);
  if (failure) return {};
  const auto folder = path.parent_path();
  for (const auto& place : {folder, folder / PELMORA_HELPER_FROM_LIBRARY}) {
    const auto program = place / "pelmora-dialog";
    if (access(program.c_str(), X_OK) == 0) return program.string();
  }
  return {};
}

}  // namespace pelmora::dialog
