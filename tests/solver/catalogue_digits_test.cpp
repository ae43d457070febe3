// SPDX-License-Identifier: MIT
#include "bench/catalogue_workload.h"
#include "tests/solver/fit_helpers.h"
#include "tests/solver/quad_reference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <tuple>

namespace pelmora::test {
namespace {

// What the engine promises for its catalogue against the exact solution of the same doubles.
constexpr double parameterDigits = 12, otherDigits = 12.5;

struct WorstDigits {
  double parameters = 99, errors = 99, statistics = 99, curve = 99;
};

WorstDigits digitsOf(const FitModel& model, const QuadReference& reference, std::size_t p,
                     double low) {
  const QuadFit exact = reference.fit(p);
  WorstDigits worst;
  const auto parameters = model.parameters();
  for (std::size_t k = 0; k < p; ++k) {
    worst.parameters =
        std::min(worst.parameters, agreeingDigits(parameters[k].Value, exact.parameters[k]));
    worst.errors = std::min(worst.errors,
                            agreeingDigits(parameters[k].StandardError, exact.standardErrors[k]));
  }
  const FitStatistics s = model.statistics();
  worst.statistics = std::min({agreeingDigits(s.ResidualStandardError, exact.residualError),
                               agreeingDigits(s.ResidualSumOfSquares, exact.residualSquares),
                               agreeingDigits(s.RSquared, exact.rSquared),
                               agreeingDigits(s.AdjustedRSquared, exact.adjustedRSquared),
                               agreeingDigits(s.RegressionSumOfSquares, exact.regressionSquares)});
  const auto grid = bench::workload(40, low).x;
  const auto curve = model.evaluate(grid);
  for (std::size_t k = 0; k < grid.size(); ++k) {
    worst.curve =
        std::min(worst.curve, agreeingDigits(curve[k], reference.valueAt(exact, grid[k])));
  }
  return worst;
}

// Points and smallest x.
class CatalogueDigits : public testing::TestWithParam<std::tuple<std::size_t, double>> {};

TEST_P(CatalogueDigits, agree_with_quadruple_precision) {
  const auto [n, low] = GetParam();
  const auto points = bench::workload(n, low);
  const auto data = dataOf(points.x, points.y);
  const QuadReference polynomials(points.x, points.y, true, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
  const QuadReference reciprocals(points.x, points.y, false, {0, 1, -1, 2, -2, 3, -3, 4, -4});
  const auto engine = createSolver();
  for (const auto& [name, expression] : bench::catalogue()) {
    const auto model = engine->createModel();
    model->Definition = {name, expression};
    model->attach(data);
    ASSERT_TRUE(model->solutionFound()) << name << ": " << model->failureReason();
    const std::size_t p = model->parameters().size();
    const bool isReciprocal = expression.find('/') != std::string::npos;
    const auto digits = digitsOf(*model, isReciprocal ? reciprocals : polynomials, p, low);
    std::cout << n << " points from " << low << ", " << name << ": parameters " << digits.parameters
              << ", errors " << digits.errors << ", statistics " << digits.statistics << ", curve "
              << digits.curve << "\n";
    EXPECT_GE(digits.parameters, parameterDigits) << name;
    EXPECT_GE(digits.errors, otherDigits) << name;
    EXPECT_GE(digits.statistics, otherDigits) << name;
    EXPECT_GE(digits.curve, otherDigits) << name;
  }
}

INSTANTIATE_TEST_SUITE_P(of, CatalogueDigits,
                         testing::Combine(testing::Values(std::size_t{50}, std::size_t{500},
                                                          std::size_t{5000}, std::size_t{32000}),
                                          testing::Values(40.0, 0.4, 2.0, 1.4)));

}  // namespace
}  // namespace pelmora::test
