// SHA-256.
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace pelmora::report {

// Source: FIPS 180-4, section 6.2.
[[nodiscard]] std::array<std::uint8_t, 32> sha256(std::string_view text);
// 64 hexadecimal digits in small letters.
[[nodiscard]] std::string sha256Hex(std::string_view text);
// As a page's security policy writes it.
[[nodiscard]] std::string sha256Base64(std::string_view text);

}  // namespace pelmora::report
