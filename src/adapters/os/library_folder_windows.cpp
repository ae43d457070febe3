// SPDX-License-Identifier: MIT
#include "adapters/os/library_folder.h"
#include "adapters/os/module_path.h"
#include "base/file_text.h"

#include <windows.h>

namespace pelmora {

std::string libraryFolder() {
  HMODULE library = nullptr;
  constexpr DWORD ofThisCode =
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  static const wchar_t inThisLibrary = 0;
  if (GetModuleHandleExW(ofThisCode, &inThisLibrary, &library) == 0) return ".";
  const std::filesystem::path path = os::modulePath(library);
  return path.empty() ? "." : utf8Text(path.parent_path());
}

}  // namespace pelmora
