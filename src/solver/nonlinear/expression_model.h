// An equation over a series of points, for the nonlinear search.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/equations/expression.h"
#include "solver/nonlinear/regression_model.h"
#include "solver/linear/series.h"

#include <memory>

namespace pelmora::solver {

// Parameters in order of their letters. Keeps references to both arguments.
[[nodiscard]] std::unique_ptr<RegressionModel> makeExpressionModel(const Expression& expression,
                                                                   std::span<const double> x,
                                                                   std::span<const double> y);

}  // namespace pelmora::solver
