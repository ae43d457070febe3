// SPDX-License-Identifier: MIT
#include "solver/reference/matern_step.h"

#include <cmath>

namespace pelmora::solver::reference {
namespace {

// The integrals of s^k exp(-2 s) from 0 to d, k = 0 to 4. The last one is a series of positive
// terms (or what is left of the whole integral where d is large); integration by parts leads down
// to the others by sums of positive terms.
std::array<double, 5> decayingMoments(double d, double decay) {
  constexpr double seriesUpTo = 3;
  constexpr double wholeOfFour = 0.75;  // 4! / 2^5
  constexpr double precision = 1e-17;
  std::array<double, 5> moment{};
  const double twice = 2 * d;
  if (d <= seriesUpTo) {
    double term = 1, sum = 1;
    for (int j = 6; term > precision * sum; ++j) sum += term *= twice / j;
    moment[4] = decay * d * d * d * d * d / 5 * sum;
  } else {
    const double start = 1 + twice * (1 + twice / 2 * (1 + twice / 3 * (1 + twice / 4)));
    moment[4] = wholeOfFour * (1 - decay * start);
  }
  moment[3] = (2 * moment[4] + d * d * d * d * decay) / 4;
  moment[2] = (2 * moment[3] + d * d * d * decay) / 3;
  moment[1] = (2 * moment[2] + d * d * decay) / 2;
  moment[0] = 2 * moment[1] + d * decay;
  return moment;
}

// Of a positive definite matrix, or of zero.
Matrix3 lowerFactor(const Matrix3& a) {
  Matrix3 l{};
  if (a[0][0] <= 0) return l;
  l[0][0] = std::sqrt(a[0][0]);
  l[1][0] = a[1][0] / l[0][0];
  l[2][0] = a[2][0] / l[0][0];
  l[1][1] = std::sqrt(a[1][1] - l[1][0] * l[1][0]);
  l[2][1] = (a[2][1] - l[2][0] * l[1][0]) / l[1][1];
  l[2][2] = std::sqrt(a[2][2] - l[2][0] * l[2][0] - l[2][1] * l[2][1]);
  return l;
}

}  // namespace

double maternRate(double length) { return std::sqrt(5.0) / length; }

MaternStep maternStep(double scaledDistance) {
  constexpr double negligible = 1e-40;  // its fifth power is still a normal number
  constexpr double far = 300;           // nothing is remembered over such a step
  const double d = scaledDistance < negligible ? 0 : std::fmin(scaledDistance, far);
  const double e = std::exp(-d);
  const double half = d * d / 2;
  MaternStep step;
  step.transition = {{{e * (1 + d + half), e * (d + 2 * half), e * half},
                      {-e * half, e * (1 + d - 2 * half), e * (d - half)},
                      {e * (half - d), e * (2 * half - 3 * d), e * (1 - 2 * d + half)}}};
  // What noise does to the state after a time s is (s^2/2, s - s^2/2, 1 - 2s + s^2/2) exp(-s).
  constexpr double intensity = 16.0 / 3;
  const auto m = decayingMoments(d, e * e);
  Matrix3 q{};
  q[0][0] = intensity * m[4] / 4;
  q[1][0] = intensity * (m[3] / 2 - m[4] / 4);
  q[2][0] = intensity * (m[2] / 2 - m[3] + m[4] / 4);
  q[1][1] = intensity * (m[2] - m[3] + m[4] / 4);
  q[2][1] = intensity * (m[1] - 2.5 * m[2] + 1.5 * m[3] - m[4] / 4);
  q[2][2] = intensity * (m[0] - 4 * m[1] + 5 * m[2] - 2 * m[3] + m[4] / 4);
  step.factor = lowerFactor(q);
  return step;
}

Matrix3 stationaryFactor() {
  return {{{1, 0, 0}, {0, std::sqrt(1.0 / 3), 0}, {-1.0 / 3, 0, std::sqrt(8.0 / 9)}}};
}

}  // namespace pelmora::solver::reference
