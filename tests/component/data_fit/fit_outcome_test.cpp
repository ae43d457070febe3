// What a fit tells about every equation beyond the report.
// SPDX-License-Identifier: MIT
#include "tests/component/data_fit/fit_fixture.h"

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

TEST_F(fit_outcome, equation_that_passes_and_ranks_lower_is_accepted) {
  useEquations({"A", "B"});  // B has index 0
  engine_.solutions["A"] = test::solutionOf(0.5, 0.7);
  engine_.solutions["B"] = test::solutionOf(0.5, 0.6);
  const auto fitting = makeFitting();
  fit(*fitting);
  const FitOutcome outcome = fitting->outcome();
  ASSERT_EQ(outcome.Equations.size(), 2U);
  EXPECT_EQ(outcome.Equations[0].Verdict, EquationVerdict::accepted);
  EXPECT_EQ(outcome.Equations[0].Reason, "");
  EXPECT_EQ(outcome.Equations[1].Verdict, EquationVerdict::chosen);
}

TEST_F(fit_outcome, ratio_curve_that_fails_its_test_says_so) {
  useEquations({"A"});
  band_.ratioCurve = [](std::span<const double>, std::span<const double>) { return false; };
  const auto fitting = makeFitting();
  fitting->RatioCurve = true;
  fit(*fitting);
  const FitOutcome outcome = fitting->outcome();
  ASSERT_EQ(outcome.Equations.size(), 1U);
  EXPECT_EQ(outcome.Equations[0].Verdict, EquationVerdict::ratioTestFailed);
  EXPECT_NE(outcome.Equations[0].Reason, "");
  EXPECT_EQ(outcome.Chosen, std::nullopt);
}

TEST_F(fit_outcome, chosen_is_absent_where_none_was) {
  useEquations({"A"});
  engine_.otherwise.found = false;
  const auto fitting = makeFitting();
  fit(*fitting);
  EXPECT_EQ(fitting->outcome().Chosen, std::nullopt);
}

// An engine of the host's own is asked for the predicted points and for nothing else.
TEST_F(fit_outcome, model_is_evaluated_once_at_the_predicted_points) {
  useEquations({"A"});
  std::vector<std::size_t> evaluations;
  engine_.otherwise.onEvaluate = [&](std::vector<double>& y) { evaluations.push_back(y.size()); };
  const auto fitting = makeFitting();
  fit(*fitting);
  EXPECT_EQ(fitting->outcome().Chosen, std::optional<std::size_t>(0));
  EXPECT_EQ(evaluations, std::vector<std::size_t>{3});
}

TEST_F(fit_outcome, model_without_samples_is_judged_by_its_points_alone) {
  useEquations({"A"});
  engine_.otherwise.parameters.resize(9);
  const auto fitting = makeFitting();
  fit(*fitting);
  const FitOutcome outcome = fitting->outcome();
  ASSERT_EQ(outcome.Warnings.size(), 1U);
  EXPECT_EQ(outcome.Warnings[0].Kind, CurveWarningKind::fewLevels);
}

TEST_F(fit_outcome, model_with_samples_is_looked_at_between_its_points) {
  useEquations({"A"});
  engine_.otherwise.onSample = [](std::vector<double>& y) {
    if (y.size() > 2) y[1] = 1e6;
  };
  const auto fitting = makeFitting();
  fit(*fitting);
  const FitOutcome outcome = fitting->outcome();
  ASSERT_FALSE(outcome.Warnings.empty());
  EXPECT_EQ(outcome.Warnings[0].Kind, CurveWarningKind::pole);
}

// Looking closer at the curve must not cost the host the curve.
TEST_F(fit_outcome, model_that_cannot_be_sampled_is_no_error) {
  useEquations({"A"});
  engine_.otherwise.onSample = [](std::vector<double>&) {
    throw std::runtime_error("sampled enough");
  };
  const auto fitting = makeFitting();
  EXPECT_EQ(fit(*fitting).size(), 3U);
  EXPECT_EQ(fitting->outcome().Chosen, std::optional<std::size_t>(0));
  EXPECT_EQ(boxes(), test::Journal());
}

TEST_F(fit_outcome, model_that_delivers_too_few_samples_is_no_error) {
  useEquations({"A"});
  engine_.otherwise.onSample = [](std::vector<double>& y) { y.resize(1); };
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
