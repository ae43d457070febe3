// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/fit_advice.h"

#include <pelmora/calibration/words.h>

#include <gmock/gmock.h>

namespace pelmora::cli {
namespace {

using testing::HasSubstr;

constexpr const char* reciprocal = "a+b*ln(x)+c/ln(x)";

EquationOutcome outcome(EquationVerdict verdict, const std::string& expression) {
  EquationOutcome equation;
  equation.Name = "Some equation";
  equation.Expression = expression;
  equation.Verdict = verdict;
  equation.Reason = "the reason";
  return equation;
}

// A flat curve of 100 and one point 0.25 % above it.
calibration::Fit flatFit() {
  calibration::Fit fit;
  fit.min = 10;
  fit.max = 1000;
  fit.merged = fit.fitted = PointArray{{10, 100}, {100, 100.25}, {1000, 100}};
  return fit;
}

TEST(advice, names_the_smallest_band_that_would_do) {
  const calibration::Fit fit = flatFit();
  auto equation = outcome(EquationVerdict::bandTestFailed, "a+b*x");
  equation.Predicted = PointArray{{10, 100}, {1000, 100}};
  ASSERT_TRUE(calibration::passingBand(fit, equation));
  EXPECT_NEAR(*calibration::passingBand(fit, equation), 0.25, 1e-12);
  EXPECT_EQ(advice(fit, equation), "--band 0.25");
}

TEST(advice, knows_no_band_where_a_point_is_off_by_more_than_the_curve) {
  calibration::Fit fit = flatFit();
  fit.fitted(1, 1) = 300;
  auto equation = outcome(EquationVerdict::bandTestFailed, "a+b*x");
  equation.Predicted = PointArray{{10, 100}, {1000, 100}};
  EXPECT_FALSE(calibration::passingBand(fit, equation));
  EXPECT_THAT(advice(fit, equation), HasSubstr("--min"));
}

TEST(advice, sends_a_pole_inside_the_range_above_it) {
  calibration::Fit fit = flatFit();
  fit.min = 0.4;
  EXPECT_THAT(advice(fit, outcome(EquationVerdict::bandTestFailed, reciprocal)),
              HasSubstr("--min 1.1"));
  EXPECT_THAT(advice(flatFit(), outcome(EquationVerdict::bandTestFailed, reciprocal)),
              testing::Not(HasSubstr("--min 1.1")));
}

TEST(advice, counts_the_points_that_are_missing) {
  const auto equation = outcome(EquationVerdict::noSolution, "a+b*log(x)+c*log(x)^2+d*log(x)^3");
  EXPECT_THAT(advice(flatFit(), equation), HasSubstr("it has 4 parameters, the series 3 points"));
}

TEST(advice, counts_parameters_as_the_engine_does) {
  EXPECT_THAT(advice(flatFit(), outcome(EquationVerdict::noSolution, "a+2e3*b*X+c*x^2")),
              HasSubstr("it has 3 parameters, the series 3 points"));
  EXPECT_THAT(advice(flatFit(), outcome(EquationVerdict::noSolution, "a+b*(")),
              HasSubstr("an expression that can be read"));
}

TEST(advice, wants_positive_roshko_for_logarithms) {
  calibration::Fit fit = flatFit();
  fit.fitted(0, 0) = -1;
  EXPECT_THAT(advice(fit, outcome(EquationVerdict::noSolution, "a+b*ln(x)")),
              HasSubstr("Roshko above 0"));
}

TEST(rejection, names_residual_and_point_of_the_residual_test) {
  auto equation = outcome(EquationVerdict::residualTestFailed, "a");
  equation.WorstResidualRatio = 12.5;
  equation.WorstResidualX = 48.25;
  EXPECT_EQ(calibration::rejection(equation), "residual test: +1.25e+03 % at Roshko 48.25");
}

TEST(rejection, is_empty_for_what_passed) {
  EXPECT_EQ(calibration::rejection(outcome(EquationVerdict::chosen, "a")), "");
  EXPECT_EQ(calibration::rejection(outcome(EquationVerdict::bandTestFailed, "a")), "the reason");
}

TEST(short_advice, follows_the_equation_that_came_nearest) {
  calibration::Fit fit = flatFit();
  auto near = outcome(EquationVerdict::bandTestFailed, "a");
  near.Name = "Near";
  near.Predicted = PointArray{{10, 100}, {1000, 100}};
  auto far = near;
  far.Name = "Far";
  far.Predicted = PointArray{{10, 90}, {1000, 90}};
  fit.outcome.Equations = {far, near, outcome(EquationVerdict::noSolution, "a"),
                           outcome(EquationVerdict::notTried, "a")};
  EXPECT_THAT(shortReason(fit), HasSubstr("nearest was Near"));
  EXPECT_EQ(shortAdvice(fit), "try --band 0.25");
}

}  // namespace
}  // namespace pelmora::cli
