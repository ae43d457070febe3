// UTF-8 texts of the component and UTF-16 texts of Windows.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace pelmora::os {

// What is malformed becomes U+FFFD. Errors: none.
[[nodiscard]] std::wstring wideText(std::string_view utf8);
[[nodiscard]] std::string utf8Text(std::wstring_view wide);

}  // namespace pelmora::os
