// Double-double numbers: an unevaluated sum of two doubles, about 31 decimal digits.
// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <limits>

namespace pelmora::solver {

// value = hi + lo with |lo| <= ulp(hi) / 2. Infinities and NaN pass through `hi`.
// Source: Dekker 1971; Knuth TAOCP 2, 4.2.2; Joldes, Muller, Popescu, ACM TOMS 44 (2017).
// Needs: no contraction of a*b+c and no re-association by the compiler.
struct DoubleDouble {
  double hi = 0, lo = 0;
  constexpr DoubleDouble() = default;
  constexpr DoubleDouble(double value) : hi(value) {}  // NOLINT: numbers convert freely
  constexpr DoubleDouble(double high, double low) : hi(high), lo(low) {}
  constexpr explicit operator double() const { return hi + lo; }
};

// Exact sum where |a| >= |b| or a is zero.
constexpr DoubleDouble quickTwoSum(double a, double b) {
  const double sum = a + b;
  return {sum, b - (sum - a)};
}

// Exact sum of two doubles.
constexpr DoubleDouble twoSum(double a, double b) {
  const double sum = a + b;
  const double part = sum - a;
  return {sum, (a - (sum - part)) + (b - part)};
}

// Exact product of two doubles, |a|, |b| < 2^970.
constexpr DoubleDouble twoProduct(double a, double b) {
  constexpr double splitter = 134217729;  // 2^27 + 1
  const double product = a * b;
  const double aBig = splitter * a, bBig = splitter * b;
  const double aHigh = aBig - (aBig - a), bHigh = bBig - (bBig - b);
  const double aLow = a - aHigh, bLow = b - bHigh;
  return {product, ((aHigh * bHigh - product) + aHigh * bLow + aLow * bHigh) + aLow * bLow};
}

constexpr DoubleDouble operator-(DoubleDouble a) { return {-a.hi, -a.lo}; }

constexpr DoubleDouble operator+(DoubleDouble a, DoubleDouble b) {
  DoubleDouble high = twoSum(a.hi, b.hi);
  const DoubleDouble low = twoSum(a.lo, b.lo);
  high = quickTwoSum(high.hi, high.lo + low.hi);
  return quickTwoSum(high.hi, high.lo + low.lo);
}
constexpr DoubleDouble operator-(DoubleDouble a, DoubleDouble b) { return a + (-b); }

constexpr DoubleDouble operator*(DoubleDouble a, DoubleDouble b) {
  const DoubleDouble product = twoProduct(a.hi, b.hi);
  return quickTwoSum(product.hi, product.lo + (a.hi * b.lo + a.lo * b.hi));
}

constexpr DoubleDouble operator/(DoubleDouble a, DoubleDouble b) {
  const double first = a.hi / b.hi;
  DoubleDouble rest = a - b * DoubleDouble(first);
  const double second = rest.hi / b.hi;
  rest = rest - b * DoubleDouble(second);
  const DoubleDouble sum = quickTwoSum(first, second);
  return sum + DoubleDouble(rest.hi / b.hi);
}

// a / b short of the last few of the 106 bits, in half the time: for what ends as a double.
constexpr DoubleDouble nearQuotient(DoubleDouble a, DoubleDouble b) {
  const double first = a.hi / b.hi;
  const DoubleDouble product = twoProduct(first, b.hi);
  const double rest = ((a.hi - product.hi) - product.lo) + (a.lo - first * b.lo);
  return quickTwoSum(first, rest / b.hi);
}

constexpr DoubleDouble& operator+=(DoubleDouble& a, DoubleDouble b) { return a = a + b; }
constexpr DoubleDouble& operator-=(DoubleDouble& a, DoubleDouble b) { return a = a - b; }
constexpr DoubleDouble& operator*=(DoubleDouble& a, DoubleDouble b) { return a = a * b; }
constexpr bool operator<(DoubleDouble a, DoubleDouble b) {
  return a.hi < b.hi || (a.hi == b.hi && a.lo < b.lo);
}
constexpr bool operator>(DoubleDouble a, DoubleDouble b) { return b < a; }
constexpr bool operator==(DoubleDouble a, DoubleDouble b) { return a.hi == b.hi && a.lo == b.lo; }

inline bool isFinite(double a) { return std::isfinite(a); }
inline bool isFinite(DoubleDouble a) { return std::isfinite(a.hi) && std::isfinite(a.lo); }
inline double leading(double a) { return a; }
inline double leading(DoubleDouble a) { return a.hi; }

}  // namespace pelmora::solver
