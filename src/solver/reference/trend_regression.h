// Generalised least squares of the trend from a filter's innovations.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/reference/square_root_filter.h"

namespace pelmora::solver::reference {

using ColumnMatrix = std::array<Columns, mostColumns>;

// With V the covariance of the data in units of the noise's variance and X the columns of the
// trend: coefficients b = (X'V^-1 X)^-1 X'V^-1 y, covariance (X'V^-1 X)^-1, squares
// (y - Xb)'V^-1 (y - Xb). Index 0 is unused in b and covariance, as in `Columns`. Level and slope
// have no prior (the diffuse filter of de Jong); the drag has the variance
// drag^2, an offset of a fluid offsets^2.
//
// Source: de Jong: The diffuse Kalman filter, Annals of Statistics 19 (1991) 1073-1083.
struct TrendFit {
  int columns = 0;
  Columns coefficients{};
  ColumnMatrix covariance{};
  double squares = 0;
  double logDeterminant = 0;  // ln|V| + ln|X'V^-1 X|, offsets' variances included
};

class TrendRegression {
 public:
  TrendRegression(int columns, double drag, double offsets);
  void add(const Innovation& innovation);
  // What repeats add beyond their mean: their scatter over its variance, and the determinant.
  void addRepeats(double count, double scatter, const Lanes& variance);
  [[nodiscard]] TrendFit finish(std::size_t lane) const;

 private:
  int columns_;
  std::array<LaneColumns, mostColumns> gram_{};  // lower triangle
  Lanes logDeterminant_ = 0;
  Lanes product_ = 1;  // of variances whose logarithms are still to be added
  void multiply(const Lanes& factor);
};

}  // namespace pelmora::solver::reference
