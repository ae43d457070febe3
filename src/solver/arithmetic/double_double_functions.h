// Elementary functions of double-double numbers, to about 30 digits.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/arithmetic/double_double.h"

namespace pelmora::solver {

inline constexpr DoubleDouble dd_pi{3.141592653589793116e+00, 1.224646799147353207e-16};
inline constexpr DoubleDouble dd_ln2{6.931471805599452862e-01, 2.319046813846299558e-17};
inline constexpr DoubleDouble dd_ln10{2.302585092994045901e+00, -2.170756223382249351e-16};

// Outside a function's domain the answer is NaN, as with the functions of doubles.
[[nodiscard]] DoubleDouble exp(DoubleDouble a);
[[nodiscard]] DoubleDouble log(DoubleDouble a);
[[nodiscard]] DoubleDouble sqrt(DoubleDouble a);
// 1 / sqrt(a) for normal positive a.
[[nodiscard]] DoubleDouble inverseRoot(DoubleDouble a);
[[nodiscard]] DoubleDouble abs(DoubleDouble a);
[[nodiscard]] DoubleDouble sin(DoubleDouble a);
[[nodiscard]] DoubleDouble cos(DoubleDouble a);
[[nodiscard]] DoubleDouble tan(DoubleDouble a);
[[nodiscard]] DoubleDouble asin(DoubleDouble a);
[[nodiscard]] DoubleDouble acos(DoubleDouble a);
[[nodiscard]] DoubleDouble atan(DoubleDouble a);
[[nodiscard]] DoubleDouble sinh(DoubleDouble a);
[[nodiscard]] DoubleDouble cosh(DoubleDouble a);
[[nodiscard]] DoubleDouble tanh(DoubleDouble a);
// Whole exponents work for every base, others for bases >= 0.
[[nodiscard]] DoubleDouble pow(DoubleDouble base, DoubleDouble exponent);

// base^exponent by repeated squaring, for any number type.
template <class T>
[[nodiscard]] T wholePower(T base, int exponent) {
  const bool inverse = exponent < 0;
  unsigned rest = inverse ? 0U - static_cast<unsigned>(exponent) : static_cast<unsigned>(exponent);
  T result(1.0);
  for (; rest != 0; rest >>= 1U) {
    if ((rest & 1U) != 0) result = result * base;
    if (rest > 1) base = base * base;
  }
  return inverse ? T(1.0) / result : result;
}

}  // namespace pelmora::solver
