// SPDX-License-Identifier: MIT
#include "base/text_flaw.h"

#include "base/utf8_text.h"

namespace pelmora {

TextFlaw flawOf(char32_t character) noexcept {
  const auto isIn = [&](char32_t first, char32_t last) {
    return character >= first && character <= last;
  };
  if (isIn(0, 0x1F) || isIn(0x7F, 0x9F) || isIn(0x2028, 0x2029)) return TextFlaw::control;
  const bool turns =
      character == 0x061C || isIn(0x200E, 0x200F) || isIn(0x202A, 0x202E) || isIn(0x2066, 0x2069);
  return turns ? TextFlaw::bidirectional : TextFlaw::none;
}

TextFlaw flawOf(std::string_view text) noexcept {
  while (!text.empty()) {
    const auto character = takeUtf8Character(text);
    if (!character) return TextFlaw::malformed;
    if (const TextFlaw flaw = flawOf(*character); flaw != TextFlaw::none) return flaw;
  }
  return TextFlaw::none;
}

std::string shortened(std::string_view text, std::size_t most) {
  std::string_view rest = text;
  for (std::size_t taken = 0; taken < most && !rest.empty(); ++taken) (void)takeUtf8Character(rest);
  if (rest.empty()) return std::string(text);
  return std::string(text.substr(0, text.size() - rest.size())) + "...";
}

}  // namespace pelmora
