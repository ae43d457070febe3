// Numbers as operators and statements see them, and back.
// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>

namespace pelmora {

// General form: 15 significant digits for doubles, 7 for singles, whole numbers plain, exponent as
// E-05, decimal separator of the process's C locale, -0 as 0; "NaN", "Inf" and "-Inf".
[[nodiscard]] std::string numberText(double value);
[[nodiscard]] std::string numberText(float value);
// For texts of many numbers, while the locale stays the same: appends numberText(value).
class NumberTexts {
 public:
  NumberTexts();
  void append(std::string& text, double value) const;
  void append(std::string& text, std::size_t value) const;

 private:
  std::string separator_;
};
template <std::integral Integer>
[[nodiscard]] std::string numberText(Integer value) {
  return std::to_string(value);
}

// Reads a whole text as a number: blanks around it allowed, decimal separator of the process's C
// locale. Errors: Error 13 if it is not a number, 6 if it is too large.
[[nodiscard]] double numberFromText(std::string_view text);

}  // namespace pelmora
