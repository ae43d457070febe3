// SPDX-License-Identifier: MIT
#include "base/number_text.h"

#include "base/run_time_error.h"

#include <array>
#include <charconv>
#include <clocale>
#include <cmath>
#include <system_error>

namespace pelmora {
namespace {

constexpr int doubleDigits = 15;
constexpr int singleDigits = 7;

std::string_view decimalSeparator() {
  const std::lconv* locale = std::localeconv();
  return locale->decimal_point == nullptr || *locale->decimal_point == '\0'
             ? std::string_view(".")
             : std::string_view(locale->decimal_point);
}

std::string generalText(double value, int digits) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value < 0 ? "-Inf" : "Inf";
  if (value == 0) return "0";  // -0 too
  std::array<char, 48> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                 std::chars_format::general, digits);
  std::string text(buffer.data(), end.ptr);
  for (char& c : text) {
    if (c == 'e') c = 'E';
  }
  const auto separator = decimalSeparator();
  if (separator != ".") {
    if (const auto point = text.find('.'); point != std::string::npos) {
      text.replace(point, 1, separator);
    }
  }
  return text;
}

}  // namespace

std::string numberText(double value) { return generalText(value, doubleDigits); }
std::string numberText(float value) {
  return generalText(static_cast<double>(value), singleDigits);
}

double numberFromText(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) throw makeError(RunTimeError::typeMismatch);
  std::string digits(text.substr(first, text.find_last_not_of(" \t") - first + 1));
  const auto separator = decimalSeparator();
  if (separator != ".") {
    if (digits.find('.') != std::string::npos) throw makeError(RunTimeError::typeMismatch);
    if (const auto at = digits.find(separator); at != std::string::npos) {
      digits.replace(at, separator.size(), ".");
    }
  }
  const bool plus = digits.front() == '+' && digits.size() > 1 && digits[1] != '-';
  const char* begin = digits.data() + (plus ? 1 : 0);
  const char* end = digits.data() + digits.size();
  double value = 0;
  const auto [stop, error] = std::from_chars(begin, end, value);
  if (error == std::errc::result_out_of_range && stop == end) {
    const bool tooSmall =
        digits.find("e-") != std::string::npos || digits.find("E-") != std::string::npos;
    if (tooSmall) return 0;
    throw makeError(RunTimeError::overflow);
  }
  if (error != std::errc() || stop != end || !std::isfinite(value)) {
    throw makeError(RunTimeError::typeMismatch);
  }
  return value;
}

}  // namespace pelmora
