// The library as a whole: its handle, its own type library, and whether it may be unloaded.
// SPDX-License-Identifier: MIT
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <string>

namespace pelmora::com {

// Set once by DllMain.
void setLibrary(HINSTANCE library);
// The path of the library's file.
[[nodiscard]] std::wstring libraryPath();

// The library stays loaded while anything of it is in use.
class InUse {
 public:
  InUse() noexcept;
  ~InUse();
  InUse(const InUse&) = delete;
  InUse& operator=(const InUse&) = delete;
};
[[nodiscard]] bool isInUse() noexcept;
void lock(bool isLocked) noexcept;

// The type library inside the library's own file, registered or not. Owned by the caller.
HRESULT loadTypeLibrary(ITypeLib** typeLibrary);

}  // namespace pelmora::com
