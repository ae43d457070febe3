// A Kalman filter over a Matérn 5/2 process that carries the covariance as a square root.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/reference/lanes.h"
#include "solver/reference/matern_step.h"

#include <array>

namespace pelmora::solver::reference {

// What is filtered side by side: column 0 the data, then the columns of the trend (1, t and, where
// the model has one, the drag) and one for each fluid's offset. All share gains and variances,
// which depend on no data.
inline constexpr int mostFluidOffsets = 4;
inline constexpr int mostColumns = 4 + mostFluidOffsets;
using Columns = std::array<double, mostColumns>;

// The same for four nodes. Points and steps are theirs in common, amplitude and noise are not.
using LaneColumns = std::array<Lanes, mostColumns>;
using LaneVector3 = std::array<Lanes, 3>;
using LaneMatrix3 = std::array<LaneVector3, 3>;

// One observation's part in the likelihood.
struct Innovation {
  LaneColumns value;  // observed less predicted
  Lanes variance;     // of `value`, in units of the noise's variance
  Lanes weight;       // 1 / variance
  LaneVector3 gain;
};

// State mean and covariance factor x factor'. Neither step subtracts: a prediction is an
// orthogonal triangularisation, and an observation, which reads the first part of the state
// alone, scales the first column of the factor.
//
// Source: Kailath, Sayed, Hassibi: Linear Estimation, Prentice Hall (2000), chapter 12.
class SquareRootFilter {
 public:
  // `amplitude` is the process's standard deviation; noise has variance 1.
  SquareRootFilter(const Lanes& amplitude, int columns);

  void predict(const MaternStep& step);
  // Only the columns of the model are read, and written to `innovation`.
  void observe(const Columns& observed, const Lanes& noiseVariance, Innovation& innovation);

  // Lower triangle.
  [[nodiscard]] const LaneMatrix3& factor() const { return factor_; }
  // Mean of part i of the state, by column.
  [[nodiscard]] const LaneColumns& mean(int i) const { return mean_[static_cast<unsigned>(i)]; }

 private:
  Lanes amplitude_;
  unsigned columns_;
  std::array<LaneColumns, 3> mean_{};
  LaneMatrix3 factor_;
};

}  // namespace pelmora::solver::reference
