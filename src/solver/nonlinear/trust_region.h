// Search for the least squares of a nonlinear model from one start.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/nonlinear/regression_model.h"

#include <functional>
#include <vector>

namespace pelmora::solver {

struct SearchSettings {
  int iterations = 250;
  double tolerance = 1e-15;     // of the relative fall of the residual sum of squares
  std::vector<bool> projected;  // parameters that are solved for directly at each step; empty: none
  // Evaluations that all searches together may still make; none: no limit.
  double* evaluationsLeft = nullptr;
  // True ends the search where it is. Empty: never.
  std::function<bool()> stopRequested = {};
};

// Where a search ended. residualSquares is infinite where no finite point was found.
struct SearchEnd {
  std::vector<double> parameters;
  double residualSquares = 0;
  int iterations = 0;
};

// Levenberg-Marquardt with columns scaled by their largest length so far. Projected parameters
// follow the others (variable projection): the step acts on what of the other columns is
// perpendicular to theirs.
//
// Source: More 1978, Numerical Analysis, LNM 630; Golub and Pereyra, Inverse Problems 19 (2003);
//         Kaufman, BIT 15 (1975).
[[nodiscard]] SearchEnd searchFrom(const RegressionModel& model, std::vector<double> start,
                                   const SearchSettings& settings);

}  // namespace pelmora::solver
