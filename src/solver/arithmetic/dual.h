// Numbers that carry one derivative along.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/arithmetic/double_double_functions.h"

#include <cmath>

namespace pelmora::solver {

// value + slope * h with h^2 = 0. T: double or DoubleDouble.
template <class T>
struct Dual {
  T value{0.0}, slope{0.0};
  Dual() = default;
  explicit Dual(double constant) : value(constant) {}
  explicit Dual(DoubleDouble constant) : value(constant) {}
  Dual(T v, T s) : value(v), slope(s) {}
};

template <class T>
double leading(const Dual<T>& a) {
  return leading(a.value);
}

template <class T>
Dual<T> operator-(const Dual<T>& a) {
  return {-a.value, -a.slope};
}
template <class T>
Dual<T> operator+(const Dual<T>& a, const Dual<T>& b) {
  return {a.value + b.value, a.slope + b.slope};
}
template <class T>
Dual<T> operator-(const Dual<T>& a, const Dual<T>& b) {
  return {a.value - b.value, a.slope - b.slope};
}
template <class T>
Dual<T> operator*(const Dual<T>& a, const Dual<T>& b) {
  return {a.value * b.value, a.slope * b.value + a.value * b.slope};
}
template <class T>
Dual<T> operator/(const Dual<T>& a, const Dual<T>& b) {
  const T quotient = a.value / b.value;
  return {quotient, (a.slope - quotient * b.slope) / b.value};
}

template <class T>
Dual<T> exp(const Dual<T>& a) {
  using std::exp;
  const T f = exp(a.value);
  return {f, f * a.slope};
}
template <class T>
Dual<T> log(const Dual<T>& a) {
  using std::log;
  return {log(a.value), a.slope / a.value};
}
template <class T>
Dual<T> sqrt(const Dual<T>& a) {
  using std::sqrt;
  const T f = sqrt(a.value);
  return {f, T(0.5) * a.slope / f};
}
template <class T>
Dual<T> abs(const Dual<T>& a) {
  return leading(a) < 0 ? -a : a;
}
template <class T>
Dual<T> sin(const Dual<T>& a) {
  using std::sin, std::cos;
  return {sin(a.value), cos(a.value) * a.slope};
}
template <class T>
Dual<T> cos(const Dual<T>& a) {
  using std::sin, std::cos;
  return {cos(a.value), -(sin(a.value) * a.slope)};
}
template <class T>
Dual<T> tan(const Dual<T>& a) {
  using std::tan;
  const T f = tan(a.value);
  return {f, (T(1.0) + f * f) * a.slope};
}
template <class T>
Dual<T> asin(const Dual<T>& a) {
  using std::asin, std::sqrt;
  return {asin(a.value), a.slope / sqrt((T(1.0) - a.value) * (T(1.0) + a.value))};
}
template <class T>
Dual<T> acos(const Dual<T>& a) {
  using std::acos, std::sqrt;
  return {acos(a.value), -(a.slope / sqrt((T(1.0) - a.value) * (T(1.0) + a.value)))};
}
template <class T>
Dual<T> atan(const Dual<T>& a) {
  using std::atan;
  return {atan(a.value), a.slope / (T(1.0) + a.value * a.value)};
}
template <class T>
Dual<T> sinh(const Dual<T>& a) {
  using std::sinh, std::cosh;
  return {sinh(a.value), cosh(a.value) * a.slope};
}
template <class T>
Dual<T> cosh(const Dual<T>& a) {
  using std::sinh, std::cosh;
  return {cosh(a.value), sinh(a.value) * a.slope};
}
template <class T>
Dual<T> tanh(const Dual<T>& a) {
  using std::tanh;
  const T f = tanh(a.value);
  return {f, (T(1.0) - f * f) * a.slope};
}
template <class T>
Dual<T> pow(const Dual<T>& a, const Dual<T>& b) {
  using std::log, std::pow;
  const T f = pow(a.value, b.value);
  T slope(0.0);
  if (leading(a.slope) != 0 && leading(b.value) != 0) {
    slope = slope + b.value * pow(a.value, b.value - T(1.0)) * a.slope;
  }
  if (leading(b.slope) != 0 && leading(a.value) != 0) slope = slope + f * log(a.value) * b.slope;
  return {f, slope};
}

}  // namespace pelmora::solver
