// What a fit tells about every equation beyond the report.
// SPDX-License-Identifier: MIT
#include "tests/engine/fit_fixture.h"

#include <cmath>
#include <stdexcept>

namespace pelmora {
namespace {

class fit_outcome : public FitFixture {};

TEST_F(fit_outcome, says_how_each_equation_ended) {
  useEquations({"A", "B", "C", "D", "E"});  // E has index 0
  engine_.solutions["A"].found = false;
  engine_.solutions["B"].table = test::tableOfRatio(-12);
  engine_.solutions["C"] = test::solutionOf(0.5, 0.6);
  engine_.solutions["C"].curve = [](double) { return -1.0; };
  engine_.solutions["D"] = test::solutionOf(1, 0.7);
  band_.band = [](const test::FakeBandCall& call, float&) { return call.predictedY[0] > 0; };
  const auto fitting = makeFitting();
  fit(*fitting);
  const FitOutcome outcome = fitting->outcome();
  ASSERT_EQ(outcome.Equations.size(), 5U);
  EXPECT_EQ(outcome.Equations[4].Verdict, EquationVerdict::noSolution);
  EXPECT_EQ(outcome.Equations[3].Verdict, EquationVerdict::residualTestFailed);
  EXPECT_EQ(outcome.Equations[3].WorstResidualRatio, -12);
  EXPECT_EQ(outcome.Equations[2].Verdict, EquationVerdict::bandTestFailed);
  EXPECT_EQ(outcome.Equations[2].Reason, "outside the band");
  EXPECT_EQ(outcome.Equations[1].Verdict, EquationVerdict::chosen);
  EXPECT_EQ(outcome.Equations[0].Verdict, EquationVerdict::notTried);
  EXPECT_EQ(outcome.Equations[0].Name, "E");
  EXPECT_EQ(outcome.Chosen, std::optional<std::size_t>(1));
}

TEST_F(fit_outcome, chosen_is_absent_where_none_was) {
  useEquations({"A"});
  engine_.otherwise.found = false;
  const auto fitting = makeFitting();
  fit(*fitting);
  EXPECT_EQ(fitting->outcome().Chosen, std::nullopt);
}

// Looking closer at the curve must not cost the host the curve.
TEST_F(fit_outcome, model_that_cannot_be_evaluated_again_is_no_error) {
  useEquations({"A"});
  bool predicted = false;
  engine_.otherwise.onEvaluate = [&](std::vector<double>&) {
    if (predicted) throw std::runtime_error("evaluated enough");
    predicted = true;
  };
  const auto fitting = makeFitting();
  EXPECT_EQ(fit(*fitting).size(), 3U);
  EXPECT_EQ(fitting->outcome().Chosen, std::optional<std::size_t>(0));
  EXPECT_EQ(boxes(), test::Journal());
}

TEST_F(fit_outcome, model_that_delivers_too_few_values_later_is_no_error) {
  useEquations({"A"});
  bool predicted = false;
  engine_.otherwise.onEvaluate = [&](std::vector<double>& y) {
    if (predicted) y.clear();
    predicted = true;
  };
  const auto fitting = makeFitting();
  EXPECT_EQ(fit(*fitting).size(), 3U);
  EXPECT_TRUE(fitting->outcome().Warnings.empty());
}

TEST_F(fit_outcome, points_that_are_no_numbers_are_not_looked_at_closer) {
  useEquations({"A"});
  points_(1, 0) = std::nan("");
  const auto fitting = makeFitting();
  EXPECT_EQ(fit(*fitting).size(), 3U);
  EXPECT_TRUE(fitting->outcome().Warnings.empty());
}

}  // namespace
}  // namespace pelmora
