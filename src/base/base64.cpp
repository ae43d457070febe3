// SPDX-License-Identifier: MIT
#include "base/base64.h"

#include <cstddef>

namespace pelmora {
namespace {

constexpr std::string_view alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

std::string base64Text(std::string_view bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    unsigned group = 0;
    for (std::size_t k = 0; k < 3; ++k)
      group = group << 8U | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0U);
    for (std::size_t k = 0; k < 4; ++k)
      text += i + k > bytes.size() ? '=' : alphabet[group >> (18 - 6 * k) & 63U];
  }
  return text;
}

std::string bytesOfBase64(std::string_view text) {
  std::string bytes;
  unsigned bits = 0;
  unsigned count = 0;
  for (const char c : text) {
    const auto value = alphabet.find(c);
    if (value == std::string_view::npos) continue;
    bits = (bits << 6U | static_cast<unsigned>(value)) & 0xFFFU;
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count & 0xFFU);
  }
  return bytes;
}

}  // namespace pelmora
