// SPDX-License-Identifier: MIT
#include "base/student_t.h"

#include <cmath>
#include <limits>
#include <numbers>

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

// Gamma(a + 1/2) / Gamma(a), by its expansion in 1/a, reached from below by Gamma(z + 1) = z
// Gamma(z). std::lgamma is no way to it: it writes the process's global sign, and fits run in
// threads.
double gammaRatio(double a) {
  constexpr double largeEnough = 40;  // the first term left out is 7e-15 there
  double reduction = 1;
  for (; a < largeEnough; ++a) reduction *= a / (a + 0.5);
  const double t = 1 / a;
  const double series =
      1 + t * (-1.0 / 8 + t * (1.0 / 128 +
                               t * (5.0 / 1024 + t * (-21.0 / 32768 + t * (-399.0 / 262144 +
                                                                           t * 869.0 / 4194304)))));
  return reduction * std::sqrt(a) * series;
}

// The regularised incomplete beta function I_x(a, 1/2), 0 <= x < 1.
double incompleteBeta(double x, double a) {
  constexpr double b = 0.5;
  if (x <= 0) return 0;
  const double front =
      gammaRatio(a) * std::numbers::inv_sqrtpi * std::exp(a * std::log(x) + b * std::log1p(-x));
  if (x < (a + 1) / (a + b + 2)) return front * betaContinuedFraction(x, a, b) / a;
  return 1 - front * betaContinuedFraction(1 - x, b, a) / b;
}

}  // namespace

double twoSidedStudentTail(double t, double degreesOfFreedom) {
  const double x = degreesOfFreedom / (degreesOfFreedom + t * t);
  return x >= 1 ? 1 : incompleteBeta(x, degreesOfFreedom / 2);
}

double twoSidedStudentT(double probability, double degreesOfFreedom) {
  const double tail = 1 - probability;
  double low = 0;
  double high = 1;
  while (twoSidedStudentTail(high, degreesOfFreedom) > tail) {
    low = high;
    high *= 2;
  }
  // Newton's method, with a halving where it leaves the bracket.
  const double scale =
      2 * gammaRatio(degreesOfFreedom / 2) * std::numbers::inv_sqrtpi / std::sqrt(degreesOfFreedom);
  const auto slope = [&](double at) {
    return -scale * std::exp(-(degreesOfFreedom + 1) / 2 * std::log1p(at * at / degreesOfFreedom));
  };
  constexpr int mostSteps = 100;
  constexpr double settled = 8 * std::numeric_limits<double>::epsilon();
  double t = low + (high - low) / 2;
  for (int i = 0; i < mostSteps; ++i) {
    const double beyond = twoSidedStudentTail(t, degreesOfFreedom) - tail;
    (beyond > 0 ? low : high) = t;
    double next = t - beyond / slope(t);
    if (!(next > low && next < high)) next = low + (high - low) / 2;
    const double step = std::abs(next - t);
    t = next;
    if (!(step > settled * t)) break;
  }
  return t;
}

}  // namespace pelmora
