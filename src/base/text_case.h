// Text without regard to case: ASCII, Latin-1, Latin Extended-A, Greek and Cyrillic letters.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace pelmora {

// Takes the next character off the front of `text`. A byte that begins no UTF-8 character is
// delivered as 0xDC80 + byte - 0x80, so that different bytes stay different. Needs text not empty.
[[nodiscard]] char32_t takeCharacter(std::string_view& text);

// The small letter of a capital one; any other character itself.
[[nodiscard]] char32_t smallLetter(char32_t character);

// < 0, 0, > 0: order by the code points of the small letters.
[[nodiscard]] PELMORA_API int compareTexts(std::string_view a, std::string_view b);

[[nodiscard]] inline bool equalNames(std::string_view a, std::string_view b) {
  return a == b || compareTexts(a, b) == 0;
}

[[nodiscard]] bool isAscii(std::string_view text);

}  // namespace pelmora
