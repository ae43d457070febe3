// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace pelmora {

// The text without the characters at its ends that are blanks. It refers to the text given.
[[nodiscard]] inline std::string_view trimmed(std::string_view text,
                                              std::string_view blanks = " ") {
  const auto first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace pelmora
