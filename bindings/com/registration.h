// What the registry says about the library.
// SPDX-License-Identifier: MIT
#pragma once

#include <windows.h>

namespace pelmora::com {

// Class, names "Pelmora.RawData" and "Pelmora.RawData.1", type library. What fails is taken back.
//
// Errors: SELFREG_E_CLASS, SELFREG_E_TYPELIB, mostly for want of an administrator's rights.
[[nodiscard]] HRESULT registerServer();
// Removes every key that registerServer wrote. What is not there counts as removed.
[[nodiscard]] HRESULT unregisterServer();

}  // namespace pelmora::com
