// SPDX-License-Identifier: MIT
#include "base/markup_text.h"

#include <cstddef>

namespace pelmora {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

unsigned char byteAt(std::string_view text, std::size_t at) {
  return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

// Bytes of the well-formed UTF-8 character at `at`; 0 if there is none.
//
// Source: The Unicode Standard, table 3-7.
std::size_t characterLength(std::string_view text, std::size_t at) {
  const unsigned lead = byteAt(text, at), second = byteAt(text, at + 1);
  const auto isTail = [&](std::size_t k) { return (byteAt(text, at + k) & 0xC0U) == 0x80U; };
  if (lead < 0x80) return 1;
  if (lead < 0xC2 || lead > 0xF4) return 0;
  if (lead < 0xE0) return isTail(1) ? 2 : 0;
  const unsigned lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const unsigned highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  if (second < lowest || second > highest || !isTail(2)) return 0;
  if (lead < 0xF0) return 3;
  return isTail(3) ? 4 : 0;
}

std::string_view entity(char c) {
  switch (c) {
    case '&': return "&amp;";
    case '<': return "&lt;";
    case '>': return "&gt;";
    case '"': return "&quot;";
    case '\'': return "&#39;";
    default: return {};
  }
}

}  // namespace

std::string escaped(std::string_view text) {
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = characterLength(text, at);
    const char c = text[at];
    const auto code = static_cast<unsigned char>(c);
    const bool isControl = (code < 32 && c != '\n' && c != '\t') || code == 127;
    if (length == 0 || isControl) {
      result += replacement;
    } else if (length == 1 && !entity(c).empty()) {
      result += entity(c);
    } else {
      result += text.substr(at, length);
    }
    at += length == 0 ? 1 : length;
  }
  return result;
}

}  // namespace pelmora
