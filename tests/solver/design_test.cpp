// The cores below the equations, fed with sets that have several predictors.
// SPDX-License-Identifier: MIT
#include "solver/linear/column_kernels.h"
#include "solver/arithmetic/double_double_functions.h"
#include "solver/nonlinear/nonlinear_fit.h"
#include "solver/linear/orthogonal_factor.h"
#include "solver/linear/solution.h"
#include "tests/solver/strd_sets.h"

#include <gtest/gtest.h>

#include <cmath>

namespace pelmora::solver {
namespace {

using test::agreeingDigits;
using test::StrdSet;
using test::strdSet;

Column columnOf(const std::vector<double>& values) {
  Column column(values.size());
  column.hi = values;
  return column;
}

TEST(design, longley_has_13_digits) {
  const StrdSet set = strdSet("Longley");
  std::vector<Column> columns{columnOf(std::vector<double>(set.y.size(), 1.0))};
  for (const auto& x : set.x) columns.push_back(columnOf(x));
  const std::size_t p = columns.size();
  Factor factor = orthogonalFactor(columns, columnOf(set.y), dependenceOfExactColumns);
  ASSERT_EQ(factor.rank, p);
  const DoubleDouble mean = sum(set.y) / DoubleDouble(static_cast<double>(set.y.size()));
  const Solution solution =
      solutionOfTerms(std::make_shared<const NestedFit>(makeTermsFit(std::move(factor))),
                      set.y.size(), squaresAbout(set.y, mean), 1);
  for (std::size_t k = 0; k < p; ++k) {
    EXPECT_GE(agreeingDigits(solution.parameters[k].hi, set.parameters[k]), 13) << k;
    EXPECT_GE(agreeingDigits(solution.standardErrors[k], set.standardErrors[k]), 13) << k;
  }
  const FitStatistics& statistics = solution.statistics;
  EXPECT_GE(agreeingDigits(statistics.ResidualSumOfSquares, set.residualSquares), 13);
  EXPECT_GE(agreeingDigits(statistics.ResidualStandardError, set.residualError), 13);
  EXPECT_GE(agreeingDigits(statistics.RSquared, set.rSquared), 13);
  EXPECT_GE(agreeingDigits(statistics.AdjustedRSquared, set.adjustedRSquared), 13);
  EXPECT_GE(agreeingDigits(statistics.RegressionSumOfSquares, set.regressionSquares), 13);
}

// ln(y) = a - b x1 exp(-c x2).
class NelsonModel : public RegressionModel {
 public:
  explicit NelsonModel(const StrdSet& set) : set_(set) {}
  [[nodiscard]] std::size_t points() const override { return set_.y.size(); }
  [[nodiscard]] std::size_t parameters() const override { return 3; }
  [[nodiscard]] std::vector<bool> isLinearIn() const override { return {true, true, false}; }
  void evaluate(const std::vector<double>& b, std::vector<double>& residuals,
                std::vector<std::vector<double>>* slopes) const override {
    residuals.resize(points());
    if (slopes != nullptr) slopes->assign(3, std::vector<double>(points()));
    for (std::size_t k = 0; k < points(); ++k) {
      const double x1 = set_.x[0][k], x2 = set_.x[1][k], e = std::exp(-b[2] * x2);
      residuals[k] = std::log(set_.y[k]) - (b[0] - b[1] * x1 * e);
      if (slopes == nullptr) continue;
      (*slopes)[0][k] = 1;
      (*slopes)[1][k] = -x1 * e;
      (*slopes)[2][k] = b[1] * x1 * x2 * e;
    }
  }
  void evaluateExactly(const std::vector<DoubleDouble>& b, Column& residuals,
                       std::vector<Column>& slopes) const override {
    residuals = Column(points());
    slopes.assign(3, Column(points()));
    for (std::size_t k = 0; k < points(); ++k) {
      const DoubleDouble x1(set_.x[0][k]), x2(set_.x[1][k]), e = exp(-b[2] * x2);
      residuals.set(k, log(DoubleDouble(set_.y[k])) - (b[0] - b[1] * x1 * e));
      slopes[0].set(k, DoubleDouble(1));
      slopes[1].set(k, -x1 * e);
      slopes[2].set(k, b[1] * x1 * x2 * e);
    }
  }
  [[nodiscard]] std::vector<DoubleDouble> curvature(const std::vector<DoubleDouble>&,
                                                    const Column&) const override {
    return {};
  }

 private:
  const StrdSet& set_;
};

TEST(design, nelson_is_solved_from_both_starts) {
  const StrdSet set = strdSet("Nelson");
  const NelsonModel model(set);
  for (const auto& start : {set.start1, set.start2}) {
    const NonlinearEnd end = lowestMinimum(model, {start}, {});
    const auto covariance =
        end.fit->covariance(3, end.fit->factor.residualSquares[3] / DoubleDouble(125));
    EXPECT_GE(agreeingDigits(end.fit->factor.residualSquares[3].hi, set.residualSquares), 13);
    for (std::size_t k = 0; k < 3; ++k) {
      EXPECT_GE(agreeingDigits(end.parameters[k].hi, set.parameters[k]), 11.5) << k;
      EXPECT_GE(agreeingDigits(sqrt(covariance[4 * k]).hi, set.standardErrors[k]), 10) << k;
    }
  }
}

}  // namespace
}  // namespace pelmora::solver
