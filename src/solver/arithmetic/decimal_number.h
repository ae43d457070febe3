// Reads a decimal number to double-double precision.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/arithmetic/double_double.h"

#include <cstddef>
#include <string_view>

namespace pelmora::solver {

struct DecimalNumber {
  DoubleDouble value;
  std::size_t length = 0;  // characters read; 0 where the text does not begin with a number
};

// digits [ "." digits ] [ "e" [sign] digits ], one of the digit groups before the exponent may be
// missing. No sign in front, no locale. The leading double of the value is the nearest one.
// Infinite where the number is beyond the range of doubles; 0 below it.
[[nodiscard]] DecimalNumber readDecimalNumber(std::string_view text);

}  // namespace pelmora::solver
