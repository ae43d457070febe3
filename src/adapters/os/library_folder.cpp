// SPDX-License-Identifier: MIT
#include "adapters/os/library_folder.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>

namespace pelmora {

std::string libraryFolder() {
  Dl_info info{};
  static const char inThisLibrary = 0;
  if (dladdr(&inThisLibrary, &info) == 0 || info.dli_fname == nullptr) return ".";
  std::error_code failed;
  const auto path = std::filesystem::absolute(info.dli_fname, failed);
  return failed ? "." : path.parent_path().string();
}

}  // namespace pelmora
