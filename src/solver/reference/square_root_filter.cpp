// SPDX-License-Identifier: MIT
#include "solver/reference/square_root_filter.h"

#include <cmath>

namespace pelmora::solver::reference {
namespace {

using Row6 = std::array<double, 6>;

// In pairs: a chain of six additions would be most of the time of a step.
double dot(const Row6& a, const Row6& b) {
  return (a[0] * b[0] + a[1] * b[1]) + (a[2] * b[2] + a[3] * b[3]) + (a[4] * b[4] + a[5] * b[5]);
}

// The lower triangle l with l l' = rows rows', by modified Gram-Schmidt, whose triangle is as
// exact as Householder's (Björck 1967). Rows are left unscaled, so that no step waits for a root.
Matrix3 lowerTriangle(std::array<Row6, 3>& rows) {
  Matrix3 l{};
  for (unsigned i = 0; i < 3; ++i) {
    const double squares = dot(rows[i], rows[i]);
    if (squares <= 0) continue;
    const double inverse = 1 / squares;
    l[i][i] = std::sqrt(squares);
    for (unsigned j = i + 1; j < 3; ++j) {
      const double share = dot(rows[i], rows[j]) * inverse;
      l[j][i] = share * l[i][i];
      for (unsigned k = 0; k < 6; ++k) rows[j][k] -= share * rows[i][k];
    }
  }
  return l;
}

}  // namespace

SquareRootFilter::SquareRootFilter(double amplitude, int columns)
    : amplitude_(amplitude), columns_(columns), factor_(stationaryFactor()) {
  for (Vector3& row : factor_) {
    for (double& value : row) value *= amplitude;
  }
}

void SquareRootFilter::predict(const MaternStep& step) {
  std::array<Row6, 3> rows;
  for (unsigned i = 0; i < 3; ++i) {
    const Vector3& a = step.transition[i];
    rows[i] = {a[0] * factor_[0][0] + a[1] * factor_[1][0] + a[2] * factor_[2][0],
               a[1] * factor_[1][1] + a[2] * factor_[2][1],
               a[2] * factor_[2][2],
               amplitude_ * step.factor[i][0],
               amplitude_ * step.factor[i][1],
               amplitude_ * step.factor[i][2]};
  }
  factor_ = lowerTriangle(rows);
  const auto mean = mean_;
  for (unsigned i = 0; i < 3; ++i) {
    const Vector3& a = step.transition[i];
    for (unsigned c = 0; c < static_cast<unsigned>(columns_); ++c)
      mean_[i][c] = a[0] * mean[0][c] + a[1] * mean[1][c] + a[2] * mean[2][c];
  }
}

Innovation SquareRootFilter::observe(const Columns& observed, double noiseVariance) {
  Innovation innovation;
  const double sd = factor_[0][0];
  innovation.variance = sd * sd + noiseVariance;
  for (unsigned i = 0; i < 3; ++i) innovation.gain[i] = factor_[i][0] * sd / innovation.variance;
  for (unsigned c = 0; c < static_cast<unsigned>(columns_); ++c)
    innovation.value[c] = observed[c] - mean_[0][c];
  for (unsigned i = 0; i < 3; ++i) {
    for (unsigned c = 0; c < static_cast<unsigned>(columns_); ++c)
      mean_[i][c] += innovation.gain[i] * innovation.value[c];
  }
  const double kept = std::sqrt(noiseVariance / innovation.variance);
  for (unsigned i = 0; i < 3; ++i) factor_[i][0] *= kept;
  return innovation;
}

}  // namespace pelmora::solver::reference
