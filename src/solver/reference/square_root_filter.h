// A Kalman filter over a Matérn 5/2 process that carries the covariance as a square root.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/reference/matern_step.h"

#include <array>

namespace pelmora::solver::reference {

// What is filtered side by side: column 0 the data, then the columns of the trend (1, t and, where
// the model has one, the drag) and one for each fluid's offset. All share gains and variances,
// which depend on no data.
inline constexpr int mostFluidOffsets = 4;
inline constexpr int mostColumns = 4 + mostFluidOffsets;
using Columns = std::array<double, mostColumns>;

// One observation's part in the likelihood.
struct Innovation {
  Columns value;    // observed less predicted
  double variance;  // of `value`, in units of the noise's variance
  Vector3 gain;
};

// State mean and covariance factor x factor'. Neither step subtracts: a prediction is an
// orthogonal triangularisation, and an observation, which reads the first part of the state
// alone, scales the first column of the factor.
//
// Source: Kailath, Sayed, Hassibi: Linear Estimation, Prentice Hall (2000), chapter 12.
class SquareRootFilter {
 public:
  // `amplitude` is the process's standard deviation; noise has variance 1.
  SquareRootFilter(double amplitude, int columns);

  void predict(const MaternStep& step);
  Innovation observe(const Columns& observed, double noiseVariance);

  [[nodiscard]] const Matrix3& factor() const { return factor_; }
  // Mean of part i of the state, by column.
  [[nodiscard]] const Columns& mean(int i) const { return mean_[static_cast<unsigned>(i)]; }

 private:
  double amplitude_;
  int columns_;
  std::array<Columns, 3> mean_{};
  Matrix3 factor_;
};

}  // namespace pelmora::solver::reference
