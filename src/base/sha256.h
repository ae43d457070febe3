// SHA-256.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace pelmora {

// Source: FIPS 180-4, section 6.2.
[[nodiscard]] PELMORA_API std::array<std::uint8_t, 32> sha256(std::string_view text);
// 64 hexadecimal digits in small letters.
[[nodiscard]] PELMORA_API std::string sha256Hex(std::string_view text);
// As a page's security policy writes it.
[[nodiscard]] PELMORA_API std::string sha256Base64(std::string_view text);

}  // namespace pelmora
