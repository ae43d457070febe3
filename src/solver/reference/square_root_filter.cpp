// SPDX-License-Identifier: MIT
#include "solver/reference/square_root_filter.h"

namespace pelmora::solver::reference {
namespace {

using Row6 = std::array<Lanes, 6>;

// In pairs, so that no chain of additions has to be waited for.
template <unsigned Width>
Lanes dot(const Row6& a, const Row6& b) {
  Lanes sum = (a[0] * b[0] + a[1] * b[1]) + (a[2] * b[2] + a[3] * b[3]);
  if constexpr (Width > 4) sum += a[4] * b[4];
  if constexpr (Width > 5) sum += a[5] * b[5];
  return sum;
}

template <unsigned Width>
void subtract(Row6& from, const Lanes& share, const Row6& row) {
  for (unsigned k = 0; k < Width; ++k) from[k] -= share * row[k];
}

// The lower triangle l with l l' = rows rows', by modified Gram-Schmidt, whose triangle is as
// exact as Householder's (Björck 1967). Rows are left unscaled, so that no step waits for a root.
// The first row ends with two zeros and the second with one.
void lowerTriangle(std::array<Row6, 3>& rows, LaneMatrix3& l) {
  const Lanes first = dot<4>(rows[0], rows[0]), inverseFirst = inverseOfPositive(first);
  l[0][0] = sqrt(first);
  for (unsigned j = 1; j < 3; ++j) {
    const Lanes share = dot<4>(rows[0], rows[j]) * inverseFirst;
    l[j][0] = share * l[0][0];
    subtract<4>(rows[j], share, rows[0]);
  }
  const Lanes second = dot<5>(rows[1], rows[1]);
  const Lanes share = dot<5>(rows[1], rows[2]) * inverseOfPositive(second);
  l[1][1] = sqrt(second);
  l[2][1] = share * l[1][1];
  subtract<5>(rows[2], share, rows[1]);
  l[2][2] = sqrt(dot<6>(rows[2], rows[2]));
}

}  // namespace

SquareRootFilter::SquareRootFilter(const Lanes& amplitude, int columns)
    : amplitude_(amplitude), columns_(static_cast<unsigned>(columns)) {
  const Matrix3 unit = stationaryFactor();
  for (unsigned i = 0; i < 3; ++i) {
    for (unsigned j = 0; j < 3; ++j) factor_[i][j] = amplitude * unit[i][j];
  }
}

void SquareRootFilter::predict(const MaternStep& step) {
  std::array<Row6, 3> rows;
  for (unsigned i = 0; i < 3; ++i) {
    const Vector3& a = step.transition[i];
    rows[i][0] = a[0] * factor_[0][0] + a[1] * factor_[1][0] + a[2] * factor_[2][0];
    rows[i][1] = a[1] * factor_[1][1] + a[2] * factor_[2][1];
    rows[i][2] = a[2] * factor_[2][2];
    for (unsigned j = 0; j <= i; ++j) rows[i][3 + j] = amplitude_ * step.factor[i][j];
  }
  lowerTriangle(rows, factor_);
  for (unsigned c = 0; c < columns_; ++c) {
    const Lanes m0 = mean_[0][c], m1 = mean_[1][c], m2 = mean_[2][c];
    for (unsigned i = 0; i < 3; ++i) {
      const Vector3& a = step.transition[i];
      mean_[i][c] = a[0] * m0 + a[1] * m1 + a[2] * m2;
    }
  }
}

void SquareRootFilter::observe(const Columns& observed, const Lanes& noiseVariance,
                               Innovation& innovation) {
  const Lanes sd = factor_[0][0];
  innovation.variance = sd * sd + noiseVariance;
  innovation.weight = 1 / innovation.variance;
  const Lanes share = sd * innovation.weight;
  for (unsigned i = 0; i < 3; ++i) innovation.gain[i] = factor_[i][0] * share;
  for (unsigned c = 0; c < columns_; ++c) {
    const Lanes value = observed[c] - mean_[0][c];
    innovation.value[c] = value;
    for (unsigned i = 0; i < 3; ++i) mean_[i][c] += innovation.gain[i] * value;
  }
  const Lanes kept = sqrt(noiseVariance * innovation.weight);
  for (unsigned i = 0; i < 3; ++i) factor_[i][0] *= kept;
}

}  // namespace pelmora::solver::reference
