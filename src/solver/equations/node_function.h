// What each operator of an equation does to numbers, and its slopes, for any number type.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/arithmetic/double_double_functions.h"
#include "solver/equations/expression.h"

#include <cmath>

namespace pelmora::solver {

// T: double, DoubleDouble or a dual number over one of them.
template <class T>
[[nodiscard]] T applyUnary(Op op, const T& a) {
  using std::abs, std::acos, std::asin, std::atan, std::cos, std::cosh, std::exp, std::log;
  using std::sin, std::sinh, std::sqrt, std::tan, std::tanh;
  switch (op) {
    case Op::negate: return -a;
    case Op::ln: return log(a);
    case Op::log10: return log(a) / T(dd_ln10);
    case Op::exp: return exp(a);
    case Op::sqrt: return sqrt(a);
    case Op::abs: return abs(a);
    case Op::sin: return sin(a);
    case Op::cos: return cos(a);
    case Op::tan: return tan(a);
    case Op::asin: return asin(a);
    case Op::acos: return acos(a);
    case Op::atan: return atan(a);
    case Op::sinh: return sinh(a);
    case Op::cosh: return cosh(a);
    case Op::tanh: return tanh(a);
    default: return a;
  }
}

template <class T>
[[nodiscard]] T applyBinary(Op op, const T& a, const T& b) {
  using std::pow;
  switch (op) {
    case Op::add: return a + b;
    case Op::subtract: return a - b;
    case Op::multiply: return a * b;
    case Op::divide: return a / b;
    case Op::power: return pow(a, b);
    default: return a;
  }
}

// Slope of a unary operator at `a`, where it has the value `f`.
template <class T>
[[nodiscard]] T slopeUnary(Op op, const T& a, const T& f) {
  using std::cos, std::cosh, std::sin, std::sinh, std::sqrt;
  const T one(1.0);
  switch (op) {
    case Op::negate: return T(-1.0);
    case Op::ln: return one / a;
    case Op::log10: return one / (a * T(dd_ln10));
    case Op::exp: return f;
    case Op::sqrt: return T(0.5) / f;
    case Op::abs: return T(leading(a) < 0 ? -1.0 : leading(a) > 0 ? 1.0 : 0.0);
    case Op::sin: return cos(a);
    case Op::cos: return -sin(a);
    case Op::tan: return one + f * f;
    case Op::asin: return one / sqrt((one - a) * (one + a));
    case Op::acos: return -one / sqrt((one - a) * (one + a));
    case Op::atan: return one / (one + a * a);
    case Op::sinh: return cosh(a);
    case Op::cosh: return sinh(a);
    case Op::tanh: return one - f * f;
    default: return one;
  }
}

// d a^b / da and d a^b / db where a^b = f; 0^b counts as flat in b.
template <class T>
[[nodiscard]] T powerSlopeOfBase(const T& a, const T& b) {
  using std::pow;
  return leading(b) == 0 ? T(0.0) : b * pow(a, b - T(1.0));
}
template <class T>
[[nodiscard]] T powerSlopeOfExponent(const T& a, const T& f) {
  using std::log;
  return leading(a) == 0 ? T(0.0) : f * log(a);
}

}  // namespace pelmora::solver
