// What a fit found: parameters, their uncertainty, the curve; or why there is none.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/linear/nested_fit.h"

#include <pelmora/fit_engine.h>

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace pelmora::solver {

struct Series;

// A fitted curve, apart from its scale of uncertainty.
class Curve {
 public:
  virtual ~Curve() = default;
  [[nodiscard]] virtual std::vector<double> values(std::span<const double> x) const = 0;
  // The same at the points that it was fitted to.
  [[nodiscard]] virtual std::vector<double> valuesAtPoints(const Series& points) const;
  // The same to the precision of double, for a look at many more places.
  [[nodiscard]] virtual std::vector<double> samples(std::span<const double> x) const {
    return values(x);
  }
  // Standard error of the curve at x for a residual variance of 1.
  [[nodiscard]] virtual std::vector<double> unitErrors(std::span<const double> x) const = 0;
};

// Shape: p parameters in order of their letters; covariance p x p, row-major.
struct Solution {
  std::vector<DoubleDouble> parameters;
  std::vector<double> standardErrors;
  FitStatistics statistics;
  std::shared_ptr<const Curve> curve;

  // Covariance from term k of `fit`, which is parameter termOf[parameter] times factor[term].
  std::shared_ptr<const NestedFit> fit;
  std::vector<std::size_t> parameterOfTerm;
  std::vector<DoubleDouble> factorOfTerm;
  [[nodiscard]] std::vector<double> covariance() const;
};

// Why there is no solution, in words.
struct NoSolution {
  std::string reason;
};

// Fills parameters, standard errors and statistics from fit, parameterOfTerm and factorOfTerm.
//
// totalSquares: about the mean, with `baseParameters` = 1, for equations with a constant; about
// zero, with `baseParameters` = 0, for others.
// Errors: NoSolution if a parameter or its standard error is not finite.
void fillFromFit(Solution& solution, std::size_t n, DoubleDouble totalSquares, int baseParameters);
// The solution of a fit whose term k is parameter k; without a curve. Arguments and errors as
// above.
[[nodiscard]] Solution solutionOfTerms(std::shared_ptr<const NestedFit> fit, std::size_t n,
                                       DoubleDouble totalSquares, int baseParameters);

}  // namespace pelmora::solver
