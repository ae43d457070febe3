// SPDX-License-Identifier: MIT
#include "report/markup.h"

#include <array>
#include <charconv>
#include <cmath>

namespace pelmora::report {

std::string coordinate(double value) {
  std::array<char, 64> buffer{};
  const double rounded = std::round(value * 100) / 100;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(),
                                 rounded == 0 ? 0 : rounded, std::chars_format::fixed);
  if (end.ec != std::errc()) return "0";
  std::string text(buffer.data(), end.ptr);
  if (text.starts_with("0.")) text.erase(0, 1);
  if (text.starts_with("-0.")) text.erase(1, 1);
  return text;
}

std::string exactNumber(double value) {
  if (!std::isfinite(value)) return "NaN";
  std::array<char, 40> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  return {buffer.data(), end.ptr};
}

}  // namespace pelmora::report
