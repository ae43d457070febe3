// SPDX-License-Identifier: MIT
#include "adapters/os/module_path.h"

#include <windows.h>

#include <string>

namespace pelmora::os {

std::filesystem::path modulePath(HINSTANCE__* module) {
  constexpr std::size_t longestPath = 32'768;
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0) return {};
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    if (path.size() >= longestPath) return {};
    path.resize(path.size() * 2);  // it was cut
  }
}

}  // namespace pelmora::os
