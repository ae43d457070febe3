// Arrays of variants, which scripts make, and typed arrays, which members take.
// SPDX-License-Identifier: MIT
#pragma once

#include <windows.h>

#include <oleauto.h>

namespace pelmora::com {

// A new array with the same bounds, each element converted to `type` (no array, no record).
//
// Errors: DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW, E_OUTOFMEMORY; `converted` is then null.
[[nodiscard]] HRESULT convertElements(SAFEARRAY& array, VARTYPE type, LCID locale,
                                      SAFEARRAY** converted);

}  // namespace pelmora::com
