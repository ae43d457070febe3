// SPDX-License-Identifier: MIT
#include "adapters/access/helper/jet_text.h"

namespace pelmora::access {
namespace {

constexpr char32_t firstLeading = 0xD800;
constexpr char32_t firstTrailing = 0xDC00;
constexpr char32_t afterTrailing = 0xE000;

std::u16string unitsOf(Bytes bytes) {
  std::u16string units;
  const bool isPacked = bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE;
  bool isSingle = isPacked;
  for (std::size_t at = isPacked ? 2 : 0; at < bytes.size();) {
    if (isPacked && bytes[at] == 0) {
      isSingle = !isSingle;
      ++at;
    } else if (isSingle) {
      units.push_back(bytes[at++]);
    } else {
      if (bytes.size() - at < 2) throw Damage("the text ends in the middle of a character");
      units.push_back(static_cast<char16_t>(u16(bytes, at)));
      at += 2;
    }
  }
  return units;
}

void append(std::string& text, char32_t c) {
  const auto byte = [&](char32_t value) {
    text.push_back(static_cast<char>(static_cast<unsigned char>(value)));
  };
  const auto tail = [&](unsigned shift) { byte(0x80 | (c >> shift & 0x3F)); };
  if (c < 0x80) return byte(c);
  if (c < 0x800) {
    byte(0xC0 | c >> 6);
    return tail(0);
  }
  if (c < 0x10000) {
    byte(0xE0 | c >> 12);
  } else {
    byte(0xF0 | c >> 18);
    tail(12);
  }
  tail(6);
  tail(0);
}

}  // namespace

std::string textOf(Bytes bytes, std::size_t mostUnits) {
  const std::u16string units = unitsOf(bytes);
  if (units.size() > mostUnits) throw Damage("the text is longer than its column allows");
  std::string text;
  for (std::size_t i = 0; i < units.size(); ++i) {
    char32_t c = units[i];
    if (c == 0) throw Damage("the text holds a character with the code 0");
    if (c >= firstLeading && c < afterTrailing) {
      const char32_t next = i + 1 < units.size() ? units[i + 1] : 0;
      if (c >= firstTrailing || next < firstTrailing || next >= afterTrailing)
        throw Damage("the text holds half a character");
      c = 0x10000 + ((c - firstLeading) << 10) + (next - firstTrailing);
      ++i;
    }
    append(text, c);
  }
  return text;
}

}  // namespace pelmora::access
