// SPDX-License-Identifier: MIT
#include "base/utf8_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace pelmora {
namespace {

// How a lead byte begins a character: its payload, how many bytes follow, the lowest code point
// they may make.
struct Lead {
  char32_t payload;
  std::size_t tail;
  char32_t lowest;
};

std::optional<Lead> leadOf(unsigned char byte) {
  if (byte < 0x80) return Lead{byte, 0, 0};
  if ((byte & 0xE0U) == 0xC0) return Lead{byte & 0x1FU, 1, 0x80};
  if ((byte & 0xF0U) == 0xE0) return Lead{byte & 0x0FU, 2, 0x800};
  if ((byte & 0xF8U) == 0xF0) return Lead{byte & 0x07U, 3, 0x10000};
  return std::nullopt;
}

// Code points of the bytes 0x80 to 0x9F; the code page agrees with Unicode in all others.
constexpr std::array<std::uint16_t, 32> ansiCodePoints{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t ansiCodePoint(unsigned char byte) {
  return byte >= 0x80 && byte < 0xA0 ? ansiCodePoints[byte - 0x80U] : byte;
}

}  // namespace

std::optional<char32_t> takeUtf8Character(std::string_view& text) noexcept {
  const auto lead = leadOf(static_cast<unsigned char>(text.front()));
  const std::string_view whole = text;
  text.remove_prefix(1);
  if (!lead || whole.size() <= lead->tail) return std::nullopt;
  char32_t codePoint = lead->payload;
  for (const char c : whole.substr(1, lead->tail)) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0U) != 0x80) return std::nullopt;
    codePoint = codePoint << 6U | (byte & 0x3FU);
  }
  const bool isSurrogate = codePoint >= 0xD800 && codePoint < 0xE000;
  if (codePoint < lead->lowest || codePoint > 0x10FFFF || isSurrogate) return std::nullopt;
  text = whole.substr(1 + lead->tail);
  return codePoint;
}

void appendUtf8(std::string& text, char32_t codePoint) {
  const auto append = [&](char32_t byte) { text += static_cast<char>(byte); };
  if (codePoint < 0x80) return append(codePoint);
  if (codePoint < 0x800) {
    append(0xC0U | codePoint >> 6U);
  } else {
    if (codePoint < 0x10000) {
      append(0xE0U | codePoint >> 12U);
    } else {
      append(0xF0U | codePoint >> 18U);
      append(0x80U | (codePoint >> 12U & 0x3FU));
    }
    append(0x80U | (codePoint >> 6U & 0x3FU));
  }
  append(0x80U | (codePoint & 0x3FU));
}

bool isUtf8(std::string_view text) noexcept {
  const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  while (true) {
    const auto other = std::find_if_not(text.begin(), text.end(), isAscii);
    text.remove_prefix(static_cast<std::size_t>(other - text.begin()));
    if (text.empty()) return true;
    if (!takeUtf8Character(text)) return false;
  }
}

std::string utf8FromAnsi(std::string text) {
  if (isUtf8(text)) return text;
  std::string result;
  for (const char c : text) appendUtf8(result, ansiCodePoint(static_cast<unsigned char>(c)));
  return result;
}

}  // namespace pelmora
