// SPDX-License-Identifier: MIT
#include "solver/arithmetic/double_double_functions.h"

#include <array>

namespace pelmora::solver {
namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int factorials = 30;

constexpr std::array<DoubleDouble, factorials> makeInverseFactorials() {
  std::array<DoubleDouble, factorials> result{};
  result[0] = DoubleDouble(1);
  for (int k = 1; k < factorials; ++k) result[k] = result[k - 1] / DoubleDouble(k);
  return result;
}
constexpr std::array<DoubleDouble, factorials> inverseFactorial = makeInverseFactorials();

struct SinCos {
  DoubleDouble sine, cosine;
};

// |a| <= pi / 4. The odd and the even half of the exponential series, signs alternating.
SinCos sinCosReduced(DoubleDouble a) {
  const DoubleDouble square = a * a;
  DoubleDouble sine = inverseFactorial[29], cosine = inverseFactorial[28];
  for (int k = 27; k >= 1; k -= 2) sine = inverseFactorial[k] - square * sine;
  for (int k = 26; k >= 0; k -= 2) cosine = inverseFactorial[k] - square * cosine;
  return {sine * a, cosine};
}

SinCos sinCos(DoubleDouble a) {
  constexpr double exactReduction = 1e9;  // beyond it the argument's own rounding leads
  if (!isFinite(a)) return {notANumber, notANumber};
  if (std::fabs(a.hi) > exactReduction) {
    const double s = std::sin(a.hi), c = std::cos(a.hi);
    return {twoSum(s, c * a.lo), twoSum(c, -s * a.lo)};
  }
  const double quarter = std::nearbyint(a.hi / (dd_pi.hi / 2));
  const DoubleDouble rest = a - dd_pi * DoubleDouble(quarter * 0.5);
  const SinCos base = sinCosReduced(rest);
  switch (static_cast<long long>(quarter) & 3) {
    case 0: return base;
    case 1: return {base.cosine, -base.sine};
    case 2: return {-base.sine, -base.cosine};
    default: return {-base.cosine, base.sine};
  }
}

// atanh(s) / s for small s, as a series.
DoubleDouble atanhSeries(DoubleDouble s) {
  const DoubleDouble square = s * s;
  DoubleDouble sum = DoubleDouble(1) / DoubleDouble(31);
  for (int k = 29; k >= 1; k -= 2) sum = DoubleDouble(1) / DoubleDouble(k) + square * sum;
  return sum;
}

}  // namespace

DoubleDouble exp(DoubleDouble a) {
  if (std::isnan(a.hi)) return notANumber;
  if (a.hi > 709.78) return std::numeric_limits<double>::infinity();
  if (a.hi < -745.2) return 0.0;
  constexpr int halvings = 8;
  const double twos = std::nearbyint(a.hi / dd_ln2.hi);
  const DoubleDouble rest = a - dd_ln2 * DoubleDouble(twos);
  const DoubleDouble small{std::ldexp(rest.hi, -halvings), std::ldexp(rest.lo, -halvings)};
  DoubleDouble sum = inverseFactorial[11];
  for (int k = 10; k >= 1; --k) sum = inverseFactorial[k] + small * sum;
  sum = sum * small;  // exp(small) - 1
  for (int k = 0; k < halvings; ++k) sum = sum + sum + sum * sum;
  sum = sum + DoubleDouble(1);
  const int exponent = static_cast<int>(twos);
  // Two steps keep the scale factor itself within the range of doubles.
  const double half = std::ldexp(1.0, exponent / 2),
               other = std::ldexp(1.0, exponent - exponent / 2);
  return {sum.hi * half * other, sum.lo * half * other};
}

DoubleDouble log(DoubleDouble a) {
  if (!(a.hi > 0)) return a.hi == 0 ? -std::numeric_limits<double>::infinity() : notANumber;
  if (std::isinf(a.hi)) return a;
  if (a.hi > 0.9 && a.hi < 1.1) {
    const DoubleDouble s = (a - DoubleDouble(1)) / (a + DoubleDouble(1));
    return DoubleDouble(2) * s * atanhSeries(s);
  }
  int exponent = 0;
  const double fraction = std::frexp(a.hi, &exponent);
  const DoubleDouble scaled{fraction, std::ldexp(a.lo, -exponent)};
  const double start = std::log(fraction);
  const DoubleDouble step = scaled * exp(DoubleDouble(-start)) - DoubleDouble(1);
  return DoubleDouble(start) + (step - step * step * DoubleDouble(0.5)) +
         dd_ln2 * DoubleDouble(exponent);
}

DoubleDouble sqrt(DoubleDouble a) {
  if (a.hi == 0) return 0.0;
  if (!(a.hi > 0)) return notANumber;
  if (std::isinf(a.hi)) return a;
  const double root = std::sqrt(a.hi);
  const DoubleDouble rest = a - twoProduct(root, root);
  const double half = rest.hi / (2 * root);
  return quickTwoSum(root, half) + DoubleDouble(rest.lo / (2 * root) - half * (half / (2 * root)));
}

DoubleDouble inverseRoot(DoubleDouble a) {
  const double near = 1 / std::sqrt(a.hi);
  // One step of Newton's method: near + near (1 - a near^2) / 2.
  const DoubleDouble rest = DoubleDouble(1) - a * twoProduct(near, near);
  return quickTwoSum(near, 0.5 * near * rest.hi + 0.375 * near * rest.hi * rest.hi);
}

DoubleDouble abs(DoubleDouble a) { return a.hi < 0 || (a.hi == 0 && a.lo < 0) ? -a : a; }
DoubleDouble sin(DoubleDouble a) { return sinCos(a).sine; }
DoubleDouble cos(DoubleDouble a) { return sinCos(a).cosine; }

DoubleDouble tan(DoubleDouble a) {
  const SinCos both = sinCos(a);
  return both.sine / both.cosine;
}

DoubleDouble atan(DoubleDouble a) {
  if (std::isinf(a.hi)) return a.hi > 0 ? dd_pi * DoubleDouble(0.5) : dd_pi * DoubleDouble(-0.5);
  if (std::fabs(a.hi) > 1e15) {
    const DoubleDouble quarter = dd_pi * DoubleDouble(a.hi > 0 ? 0.5 : -0.5);
    return quarter - DoubleDouble(1) / a;
  }
  const double start = std::atan(a.hi);
  const SinCos at = sinCos(DoubleDouble(start));
  return DoubleDouble(start) + (a * at.cosine - at.sine) / (at.cosine + a * at.sine);
}

DoubleDouble asin(DoubleDouble a) {
  const DoubleDouble rest = (DoubleDouble(1) - a) * (DoubleDouble(1) + a);
  if (rest.hi == 0) return dd_pi * DoubleDouble(a.hi > 0 ? 0.5 : -0.5);
  if (!(rest.hi > 0)) return notANumber;
  return atan(a / sqrt(rest));
}

DoubleDouble acos(DoubleDouble a) {
  const DoubleDouble above = DoubleDouble(1) + a, below = DoubleDouble(1) - a;
  if (above.hi == 0) return dd_pi;
  if (!(above.hi > 0) || below.hi < 0) return notANumber;
  return DoubleDouble(2) * atan(sqrt(below / above));
}

DoubleDouble sinh(DoubleDouble a) {
  if (std::fabs(a.hi) < 0.5) {
    const DoubleDouble square = a * a;
    DoubleDouble sum = inverseFactorial[23];
    for (int k = 21; k >= 1; k -= 2) sum = inverseFactorial[k] + square * sum;
    return sum * a;
  }
  const DoubleDouble grown = exp(abs(a));
  if (!isFinite(grown)) return a.hi * std::numeric_limits<double>::infinity();
  const DoubleDouble half = (grown - DoubleDouble(1) / grown) * DoubleDouble(0.5);
  return a.hi < 0 ? -half : half;
}

DoubleDouble cosh(DoubleDouble a) {
  const DoubleDouble grown = exp(abs(a));
  if (!isFinite(grown)) return grown;
  return (grown + DoubleDouble(1) / grown) * DoubleDouble(0.5);
}

DoubleDouble tanh(DoubleDouble a) {
  if (std::fabs(a.hi) > 40) return a.hi > 0 ? 1.0 : -1.0;  // 1 - tanh < 1e-34
  return sinh(a) / cosh(a);
}

DoubleDouble pow(DoubleDouble base, DoubleDouble exponent) {
  constexpr double wholeLimit = 1024;
  const bool whole = exponent.lo == 0 && std::nearbyint(exponent.hi) == exponent.hi;
  if (whole && std::fabs(exponent.hi) <= wholeLimit) {
    return wholePower(base, static_cast<int>(exponent.hi));
  }
  if (base.hi == 0) return exponent.hi > 0 ? 0.0 : std::numeric_limits<double>::infinity();
  if (base.hi < 0) {
    if (!whole) return notANumber;
    const DoubleDouble size = exp(exponent * log(-base));
    return std::fmod(exponent.hi, 2.0) == 0 ? size : -size;
  }
  return exp(exponent * log(base));
}

}  // namespace pelmora::solver
