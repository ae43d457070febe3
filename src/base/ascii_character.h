// Classes of characters, the same in every locale.
// SPDX-License-Identifier: MIT
#pragma once

namespace pelmora {

[[nodiscard]] constexpr bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

[[nodiscard]] constexpr bool isLetter(char c) noexcept {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

}  // namespace pelmora
