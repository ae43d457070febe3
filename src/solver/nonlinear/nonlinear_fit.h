// Least squares for equations that are not linear in their parameters.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/equations/expression.h"
#include "solver/nonlinear/regression_model.h"
#include "solver/linear/series.h"
#include "solver/linear/solution.h"

#include <string>

namespace pelmora::solver {

// settings: First = limit of iterations of one search (250 where it is not positive), Second =
// number of starts (10), ResidualTolerance = relative fall of the residual sum of squares that ends
// a search, StartValues = a start to begin with, in order of the letters; the engine's own starts
// are tried beside it, and the lowest minimum of all is the solution.
//
// Shape:  series of n points, equation of p parameters, n > p.
// Errors: NoSolution with the reason in words.
[[nodiscard]] Solution fitNonlinear(Expression expression, const Series& series,
                                    const SolverSettings& settings);

struct NonlinearEnd {
  std::vector<DoubleDouble> parameters;
  std::shared_ptr<const NestedFit> fit;
  int iterations = 0;
};

// The core below it, for any model, from given starts: the lowest minimum found.
[[nodiscard]] NonlinearEnd lowestMinimum(const RegressionModel& model,
                                         const std::vector<std::vector<double>>& starts,
                                         const SolverSettings& settings);

}  // namespace pelmora::solver
