// A fitted curve evaluated from its equation.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/equations/expression.h"
#include "solver/linear/solution.h"

namespace pelmora::solver {

// Evaluates to double-double precision: parameters of an ill-conditioned fit are large numbers of
// alternating sign, whose rounding to doubles would show in the curve.
class ExpressionCurve : public Curve {
 public:
  // `parameters` in order of the letters; `fit` has one term for each, in the same order.
  ExpressionCurve(Expression expression, std::vector<DoubleDouble> parameters,
                  std::shared_ptr<const NestedFit> fit);
  [[nodiscard]] std::vector<double> values(std::span<const double> x) const override;
  [[nodiscard]] std::vector<double> samples(std::span<const double> x) const override;
  [[nodiscard]] std::vector<double> unitErrors(std::span<const double> x) const override;

 private:
  Expression expression_;
  std::vector<DoubleDouble> parameters_;
  std::shared_ptr<const NestedFit> fit_;
};

}  // namespace pelmora::solver
