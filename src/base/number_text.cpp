// SPDX-License-Identifier: MIT
#include "base/number_text.h"

#include "base/run_time_error.h"

#include <algorithm>
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

void appendGeneral(std::string& text, double value, int digits, std::string_view separator) {
  if (std::isnan(value)) {
    text += "NaN";
  } else if (std::isinf(value)) {
    text += value < 0 ? "-Inf" : "Inf";
  } else if (value == 0) {
    text += '0';  // -0 too
  } else {
    std::array<char, 48> buffer;
    char* end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                              std::chars_format::general, digits)
                    .ptr;
    if (char* exponent = std::find(buffer.data(), end, 'e'); exponent != end) *exponent = 'E';
    const std::string_view number(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
    const auto point = separator == "." ? std::string_view::npos : number.find('.');
    text += number.substr(0, point);
    if (point != std::string_view::npos) text.append(separator).append(number.substr(point + 1));
  }
}

std::string generalText(double value, int digits) {
  std::string text;
  appendGeneral(text, value, digits, decimalSeparator());
  return text;
}

}  // namespace

std::string numberText(double value) { return generalText(value, doubleDigits); }
std::string numberText(float value) {
  return generalText(static_cast<double>(value), singleDigits);
}

NumberTexts::NumberTexts() : separator_(decimalSeparator()) {}

void NumberTexts::append(std::string& text, double value) const {
  appendGeneral(text, value, doubleDigits, separator_);
}

void NumberTexts::append(std::string& text, std::size_t value) const {
  std::array<char, 24> buffer;
  text.append(buffer.data(),
              std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr);
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
