// SPDX-License-Identifier: MIT
#include "base/text_case.h"

#include <algorithm>
#include <cstdint>

namespace pelmora {

namespace {

constexpr bool within(char32_t c, char32_t first, char32_t last) { return c >= first && c <= last; }

// Ranges in which capital and small letter alternate, the capital one at even places ...
constexpr bool alternatesEven(char32_t c) {
  return within(c, 0x100, 0x137) || within(c, 0x14A, 0x177) || within(c, 0x3D8, 0x3EF) ||
         within(c, 0x460, 0x481) || within(c, 0x48A, 0x4BF) || within(c, 0x4D0, 0x52F);
}

// ... and at odd places.
constexpr bool alternatesOdd(char32_t c) {
  return within(c, 0x139, 0x148) || within(c, 0x179, 0x17E) || within(c, 0x4C1, 0x4CE);
}

char32_t smallGreek(char32_t c) {
  if (within(c, 0x391, 0x3AB) && c != 0x3A2) return c + 0x20;
  switch (c) {
    case 0x386: return 0x3AC;
    case 0x388:
    case 0x389:
    case 0x38A: return c + 0x25;
    case 0x38C: return 0x3CC;
    case 0x38E:
    case 0x38F: return c + 0x3F;
    case 0x3C2: return 0x3C3;  // the final sigma is a sigma
    default: return c;
  }
}

// Length of the UTF-8 character that begins with `lead`; 0 for a byte that begins none.
std::size_t characterLength(unsigned char lead) {
  if (lead < 0x80U) return 1;
  if (lead >= 0xC2U && lead < 0xE0U) return 2;
  if (lead >= 0xE0U && lead < 0xF0U) return 3;
  if (lead >= 0xF0U && lead < 0xF5U) return 4;
  return 0;
}

// Of the next character. Most are ASCII.
char32_t takeSmallLetter(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead >= 0x80U) return smallLetter(takeCharacter(text));
  text.remove_prefix(1);
  return within(lead, 'A', 'Z') ? lead + 0x20U : lead;
}

}  // namespace

char32_t takeCharacter(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = characterLength(lead);
  const bool whole =
      length >= 1 && length <= text.size() &&
      std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(length),
                  [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; });
  if (!whole) {
    text.remove_prefix(1);
    return 0xDC00U + lead;
  }
  constexpr unsigned leadBits[] = {0, 0x7FU, 0x1FU, 0x0FU, 0x07U};
  char32_t character = lead & leadBits[length];
  for (std::size_t i = 1; i < length; ++i) {
    character = (character << 6U) | (static_cast<unsigned char>(text[i]) & 0x3FU);
  }
  text.remove_prefix(length);
  return character;
}

char32_t smallLetter(char32_t c) {
  if (c < 0x80) return within(c, 'A', 'Z') ? c + 0x20 : c;
  if (within(c, 0xC0, 0xDE) && c != 0xD7) return c + 0x20;
  if (c == 0x130) return 'i';
  if (c == 0x178) return 0xFF;
  if (c == 0x1E9E) return 0xDF;
  if (within(c, 0x370, 0x3D7)) return smallGreek(c);
  if (within(c, 0x400, 0x40F)) return c + 0x50;
  if (within(c, 0x410, 0x42F)) return c + 0x20;
  if (c == 0x4C0) return 0x4CF;
  if (alternatesEven(c)) return c | 1U;
  if (alternatesOdd(c)) return c + (c & 1U);
  return c;
}

int compareTexts(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    const char32_t left = takeSmallLetter(a);
    const char32_t right = takeSmallLetter(b);
    if (left != right) return left < right ? -1 : 1;
  }
  return static_cast<int>(!a.empty()) - static_cast<int>(!b.empty());
}

bool isAscii(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80U; });
}

}  // namespace pelmora
