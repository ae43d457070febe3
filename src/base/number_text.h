// Numbers as operators and statements see them, and back.
// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <string>
#include <string_view>

namespace pelmora {

// General form: 15 significant digits for doubles, 7 for singles, whole numbers plain, exponent as
// E-05, decimal separator of the process's C locale, -0 as 0; "NaN", "Inf" and "-Inf".
[[nodiscard]] std::string numberText(double value);
[[nodiscard]] std::string numberText(float value);
template <std::integral Integer>
[[nodiscard]] std::string numberText(Integer value) {
  return std::to_string(value);
}

// Reads a whole text as a number: blanks around it allowed, decimal separator of the process's C
// locale. Errors: Error 13 if it is not a number, 6 if it is too large.
[[nodiscard]] double numberFromText(std::string_view text);

}  // namespace pelmora
