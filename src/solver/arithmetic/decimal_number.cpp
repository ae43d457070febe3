// SPDX-License-Identifier: MIT
#include "solver/arithmetic/decimal_number.h"

#include "base/ascii_character.h"
#include "solver/arithmetic/double_double_functions.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace pelmora::solver {
namespace {

// Length of the number that the text begins with; 0 if there is none.
std::size_t numberLength(std::string_view text) {
  std::size_t at = 0, digits = 0;
  for (; at < text.size() && isDigit(text[at]); ++at) ++digits;
  if (at < text.size() && text[at] == '.') {
    for (++at; at < text.size() && isDigit(text[at]); ++at) ++digits;
  }
  if (digits == 0) return 0;
  if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    std::size_t end = at + 1;
    if (end < text.size() && (text[end] == '+' || text[end] == '-')) ++end;
    if (end < text.size() && isDigit(text[end])) {
      while (end < text.size() && isDigit(text[end])) ++end;
      at = end;
    }
  }
  return at;
}

// The rest between the written number and its nearest double, for numbers of moderate size.
double restBehind(double nearest, std::string_view text) {
  constexpr int digitsThatCount = 33;
  constexpr int largestScale = 250;  // beyond it the powers of ten leave the range of doubles
  DoubleDouble mantissa;
  int scale = 0, digits = 0, exponent = 0;
  bool behindPoint = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    if (c == '.') {
      behindPoint = true;
    } else if (isDigit(c)) {
      const bool counts = digits < digitsThatCount;
      if (counts) mantissa = mantissa * DoubleDouble(10) + DoubleDouble(c - '0');
      if (counts && (digits > 0 || c != '0')) ++digits;
      scale += counts ? (behindPoint ? -1 : 0) : (behindPoint ? 0 : 1);
    } else {
      const char* first = text.data() + at + 1;
      if (*first == '+') ++first;
      std::from_chars(first, text.data() + text.size(), exponent);
      break;
    }
  }
  scale += exponent;
  if (std::abs(scale) > largestScale) return 0;
  const DoubleDouble power = wholePower(DoubleDouble(10), std::abs(scale));
  const DoubleDouble value = scale < 0 ? mantissa / power : mantissa * power;
  const double rest = (value.hi - nearest) + value.lo;
  return std::fabs(rest) <= 1e-15 * std::fabs(nearest) ? rest : 0;
}

}  // namespace

DecimalNumber readDecimalNumber(std::string_view text) {
  DecimalNumber result;
  result.length = numberLength(text);
  if (result.length == 0) return result;
  text = text.substr(0, result.length);
  double nearest = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), nearest);
  if (error == std::errc::result_out_of_range) {
    // Too large or too small: the sign of the exponent decides, a plain long number is large.
    const auto mark = text.find_first_of("eE");
    const bool isTiny =
        mark != std::string_view::npos ? text[mark + 1] == '-' : text.front() == '.';
    nearest = isTiny ? 0 : std::numeric_limits<double>::infinity();
  }
  result.value = nearest;
  constexpr double allWholeNumbers = 0x1p53;  // below it they are doubles
  const bool isWhole = nearest < allWholeNumbers && nearest == std::floor(nearest) &&
                       text.find_first_of(".eE") == std::string_view::npos;
  if (nearest != 0 && std::isfinite(nearest) && !isWhole) {
    result.value = quickTwoSum(nearest, restBehind(nearest, text));
  }
  return result;
}

}  // namespace pelmora::solver
