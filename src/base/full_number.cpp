// SPDX-License-Identifier: MIT
#include "base/full_number.h"

#include <array>
#include <charconv>

namespace pelmora {

std::string fullNumberText(double value) {
  constexpr int digits = 17;
  std::array<char, 40> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                 std::chars_format::general, digits);
  return {buffer.data(), end.ptr};
}

}  // namespace pelmora
