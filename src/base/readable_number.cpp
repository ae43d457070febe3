// SPDX-License-Identifier: MIT
#include "base/readable_number.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace pelmora {
namespace {

template <class... Format>
std::string numberOf(double value, Format... format) {
  if (!std::isfinite(value)) return "-";
  std::array<char, 400> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format...);
  return result.ec == std::errc() ? std::string(buffer.data(), result.ptr) : "-";
}

}  // namespace

std::string fixedText(double value, int decimals) {
  return numberOf(value, std::chars_format::fixed, decimals);
}

std::string significantText(double value, int digits) {
  return numberOf(value, std::chars_format::general, digits);
}

std::string exactText(double value) { return numberOf(value); }

std::string alignedText(double value, int digits) {
  if (!std::isfinite(value)) return "-";
  // Of the rounded value: 0.0996 has two digits as 0.10.
  std::array<char, 40> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                 std::chars_format::scientific, digits - 1);
  int exponent = 0;
  const char* sign = std::find(text.data(), end.ptr, 'e') + 1;
  std::from_chars(sign + (*sign == '+' ? 1 : 0), end.ptr, exponent);
  const bool isPlain = exponent > -5 && exponent < 15;
  return isPlain ? fixedText(value, std::max(0, digits - 1 - exponent))
                 : significantText(value, digits);
}

std::string withShortNumbers(std::string_view sentence) {
  constexpr std::size_t longDigits = 7;
  constexpr const char* digitsAndPoint = "0123456789.";
  std::string result;
  for (std::size_t at = 0; at < sentence.size();) {
    const std::size_t begin = std::min(sentence.find_first_of("0123456789", at), sentence.size());
    std::size_t end = std::min(sentence.find_first_not_of(digitsAndPoint, begin), sentence.size());
    while (end > begin && sentence[end - 1] == '.') --end;  // the end of the sentence
    result += sentence.substr(at, begin - at);
    const std::string_view text = sentence.substr(begin, end - begin);
    double value = 0;
    const auto [rest, code] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isDecimal = code == std::errc() && rest == text.data() + text.size() &&
                           text.find('.') != std::string_view::npos;
    result +=
        isDecimal && text.size() > longDigits + 1 ? significantText(value, 6) : std::string(text);
    at = end;
  }
  return result;
}

std::string sigmasText(double sigmas) {
  constexpr double shownInTenths = 9.95;
  const double size = std::fabs(sigmas);
  return size < shownInTenths ? significantText(size, 2) : fixedText(size, 0);
}

std::string percentText(double percent) {
  if (!std::isfinite(percent)) return "-";
  const std::string sign = percent > 0 ? "+" : "";
  if (std::fabs(percent) < 100) return sign + fixedText(percent, 3);
  return sign + significantText(percent, 3);
}

}  // namespace pelmora
