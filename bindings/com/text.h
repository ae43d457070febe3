// Texts of the component (UTF-8) and of automation (BSTR).
// SPDX-License-Identifier: MIT
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <memory>
#include <string>

namespace pelmora::com {

struct FreeText {
  void operator()(BSTR text) const noexcept { SysFreeString(text); }
};
using Text = std::unique_ptr<OLECHAR, FreeText>;

// Errors: std::bad_alloc.
[[nodiscard]] Text textFrom(const std::string& utf8);
// A null text is an empty one.
[[nodiscard]] std::string utf8From(BSTR text);

}  // namespace pelmora::com
