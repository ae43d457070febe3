// Failures of automation objects as errors of the component.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>

#include <windows.h>

#include <oaidl.h>

#include <string>

namespace pelmora::os {

// The error of a call that answered `result`; takes over the texts of `exception`. Classic run-time
// numbers, which travel as 0x800A0000 + number, come out plain. `otherwise` is the description
// where there is none.
[[nodiscard]] Error automationError(HRESULT result, EXCEPINFO& exception,
                                    const std::string& otherwise);

}  // namespace pelmora::os
