// SPDX-License-Identifier: MIT
#include "solver/linear/solution.h"

#include "solver/arithmetic/double_double_functions.h"
#include "solver/linear/series.h"

#include <numeric>
#include <utility>

namespace pelmora::solver {

std::vector<double> Curve::valuesAtPoints(const Series& points) const { return values(points.x); }

std::vector<double> Solution::covariance() const {
  const std::size_t p = parameters.size();
  std::vector<double> result(p * p);
  const DoubleDouble degrees(static_cast<double>(statistics.Observations) - static_cast<double>(p));
  const std::vector<DoubleDouble> cells =
      fit->covariance(p, fit->factor.residualSquares[p] / degrees);
  for (std::size_t k = 0; k < p; ++k) {
    for (std::size_t l = k; l < p; ++l) {  // nothing cancels any more: plain doubles will do
      const double cell = cells[k * p + l].hi / (factorOfTerm[k].hi * factorOfTerm[l].hi);
      const std::size_t row = parameterOfTerm[k], column = parameterOfTerm[l];
      result[row * p + column] = result[column * p + row] = cell;
    }
  }
  return result;
}

void fillFromFit(Solution& solution, std::size_t n, DoubleDouble totalSquares, int baseParameters) {
  const std::size_t p = solution.parameterOfTerm.size();
  const DoubleDouble residualSquares = solution.fit->factor.residualSquares[p];
  const DoubleDouble degrees(static_cast<double>(n) - static_cast<double>(p));
  const DoubleDouble variance = nearQuotient(residualSquares, degrees);
  const DoubleDouble sigma = sqrt(variance);
  const std::vector<DoubleDouble> terms = solution.fit->parameters(p);
  solution.parameters.resize(p);
  solution.standardErrors.resize(p);
  for (std::size_t k = 0; k < p; ++k) {
    const std::size_t parameter = solution.parameterOfTerm[k];
    solution.parameters[parameter] = nearQuotient(terms[k], solution.factorOfTerm[k]);
    solution.standardErrors[parameter] =
        std::fabs(sigma.hi * solution.fit->unitError(p, k) / solution.factorOfTerm[k].hi);
    if (!isFinite(solution.parameters[parameter]) ||
        !std::isfinite(solution.standardErrors[parameter])) {
      throw NoSolution{"a parameter is beyond the range of numbers"};
    }
  }
  FitStatistics& statistics = solution.statistics;
  statistics.Observations = static_cast<std::int32_t>(n);
  statistics.ResidualStandardError = static_cast<double>(sigma);
  statistics.ResidualSumOfSquares = static_cast<double>(residualSquares);
  statistics.RegressionSumOfSquares = static_cast<double>(totalSquares - residualSquares);
  if (totalSquares.hi > 0) {  // y that never changes has nothing to explain: both stay 0
    const DoubleDouble one(1), unexplained = nearQuotient(residualSquares, totalSquares);
    const DoubleDouble base(static_cast<double>(n) - baseParameters);
    statistics.RSquared = static_cast<double>(one - unexplained);
    statistics.AdjustedRSquared =
        static_cast<double>(one - nearQuotient(unexplained * base, degrees));
  }
}

Solution solutionOfTerms(std::shared_ptr<const NestedFit> fit, std::size_t n,
                         DoubleDouble totalSquares, int baseParameters) {
  const std::size_t p = fit->factor.rank;
  Solution solution;
  solution.fit = std::move(fit);
  solution.parameterOfTerm.resize(p);
  std::iota(solution.parameterOfTerm.begin(), solution.parameterOfTerm.end(), std::size_t{0});
  solution.factorOfTerm.assign(p, DoubleDouble(1));
  fillFromFit(solution, n, totalSquares, baseParameters);
  return solution;
}

}  // namespace pelmora::solver
