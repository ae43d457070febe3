// A fitted polynomial in a function of x, evaluated over its Chebyshev columns.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/equations/expression.h"
#include "solver/linear/power_fit.h"
#include "solver/linear/solution.h"

namespace pelmora::solver {

// The columns' parameters do not cancel as those of powers do.
class PowerCurve : public Curve {
 public:
  // The first p columns of `fit` over the function at node `base`.
  PowerCurve(Expression expression, NodeId base, std::shared_ptr<const PowerFit> fit,
             std::size_t p);
  [[nodiscard]] std::vector<double> values(std::span<const double> x) const override;
  [[nodiscard]] std::vector<double> valuesAtPoints(const Series& points) const override;
  [[nodiscard]] std::vector<double> samples(std::span<const double> x) const override;
  [[nodiscard]] std::vector<double> unitErrors(std::span<const double> x) const override;

 private:
  [[nodiscard]] bool isOverLogarithm() const;
  [[nodiscard]] Column functionAt(std::span<const double> x) const;
  [[nodiscard]] std::vector<double> valuesOver(const Column& u) const;

  Expression expression_;
  NodeId base_;
  std::shared_ptr<const PowerFit> fit_;
  std::vector<DoubleDouble> columnParameters_;
};

}  // namespace pelmora::solver
