// SPDX-License-Identifier: MIT
#include "engine/student_t.h"

#include <cmath>
#include <limits>

namespace pelmora {
namespace {

// The continued fraction of the incomplete beta function, by the modified Lentz method.
double betaContinuedFraction(double x, double a, double b) {
  constexpr int mostTerms = 500;
  constexpr double precision = 1e-15;
  constexpr double tiny = std::numeric_limits<double>::min();
  const auto away = [](double value) { return std::abs(value) < tiny ? tiny : value; };
  double c = 1;
  double d = 1 / away(1 - (a + b) * x / (a + 1));
  double fraction = d;
  for (int m = 1; m <= mostTerms; ++m) {
    const double even = m * (b - m) * x / ((a + 2 * m - 1) * (a + 2 * m));
    d = 1 / away(1 + even * d);
    c = away(1 + even / c);
    fraction *= c * d;
    const double odd = -(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 2 * m + 1));
    d = 1 / away(1 + odd * d);
    c = away(1 + odd / c);
    const double step = c * d;
    fraction *= step;
    if (std::abs(step - 1) < precision) break;
  }
  return fraction;
}

double incompleteBeta(double x, double a, double b) {
  if (x <= 0) return 0;
  if (x >= 1) return 1;
  const double front = std::exp(std::lgamma(a + b) - std::lgamma(a) - std::lgamma(b) +
                                a * std::log(x) + b * std::log1p(-x));
  if (x < (a + 1) / (a + b + 2)) return front * betaContinuedFraction(x, a, b) / a;
  return 1 - front * betaContinuedFraction(1 - x, b, a) / b;
}

// P(|T| > t)
double twoSidedTail(double t, double degreesOfFreedom) {
  return incompleteBeta(degreesOfFreedom / (degreesOfFreedom + t * t), degreesOfFreedom / 2, 0.5);
}

}  // namespace

double twoSidedStudentT(double probability, double degreesOfFreedom) {
  const double tail = 1 - probability;
  double low = 0;
  double high = 1;
  while (twoSidedTail(high, degreesOfFreedom) > tail) {
    low = high;
    high *= 2;
  }
  constexpr int halvings = 60;
  for (int i = 0; i < halvings && low < high; ++i) {
    const double middle = low + (high - low) / 2;
    if (middle == low || middle == high) break;
    (twoSidedTail(middle, degreesOfFreedom) > tail ? low : high) = middle;
  }
  return low + (high - low) / 2;
}

}  // namespace pelmora
