// What the nonlinear search needs of a model: values and derivatives at given parameters.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/linear/nested_fit.h"

#include <optional>
#include <vector>

namespace pelmora::solver {

// Shape: n points, p parameters; slopes[j][k] = d f(k) / d parameter j.
class RegressionModel {
 public:
  virtual ~RegressionModel() = default;
  [[nodiscard]] virtual std::size_t points() const = 0;
  [[nodiscard]] virtual std::size_t parameters() const = 0;
  // Which parameters the model is linear in, all of them together.
  [[nodiscard]] virtual std::vector<bool> isLinearIn() const = 0;
  // Work of one plain evaluation, in operations on numbers.
  [[nodiscard]] virtual double work() const { return static_cast<double>(points() * parameters()); }
  // Length of the vector of observed y, which shows how far residuals can be trusted; 0: not told.
  [[nodiscard]] virtual double responseLength() const { return 0; }
  // Observed y minus the model, and where wanted the model's slopes. Values need not be finite.
  virtual void evaluate(const std::vector<double>& parameters, std::vector<double>& residuals,
                        std::vector<std::vector<double>>* slopes) const = 0;
  virtual void evaluateExactly(const std::vector<DoubleDouble>& parameters, Column& residuals,
                               std::vector<Column>& slopes) const = 0;
  // Sum over the points of residual times the matrix of second derivatives, p x p, row-major; empty
  // where the model does not tell, or where it would take too long.
  [[nodiscard]] virtual std::vector<DoubleDouble> curvature(
      const std::vector<DoubleDouble>& parameters, const Column& residuals) const = 0;
};

}  // namespace pelmora::solver
