// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/fit_advice.h"

#include "apps/pelmora/output/suggested_exclusion.h"
#include "calibration/trust/trust_warnings.h"

#include <pelmora/calibration/words.h>

#include <gmock/gmock.h>

namespace pelmora::cli {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

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
  fit.series = "S";
  fit.meter.serial = "M";
  fit.min = 10;
  fit.max = 1000;
  fit.merged = fit.fitted = PointArray{{10, 100}, {100, 100.25}, {1000, 100}};
  return fit;
}

EquationOutcome flatEquation(const std::string& name, double y = 100) {
  EquationOutcome equation = outcome(EquationVerdict::bandTestFailed, "a+b*x");
  equation.Name = name;
  equation.Predicted = PointArray{{10, y}, {1000, y}};
  return equation;
}

FitCall call() { return {.database = "c.db", .meter = "M", .series = "S"}; }

std::vector<std::string> commandsFor(const calibration::Fit& fit, FitCall asked = call()) {
  std::vector<std::string> commands;
  for (const AdvisedStep& step : stepsFor(fit, asked))
    commands.insert(commands.end(), step.commands.begin(), step.commands.end());
  return commands;
}

TEST(advised_command, has_the_smallest_band_that_would_do) {
  calibration::Fit fit = flatFit();
  fit.outcome.Equations = {flatEquation("Near")};
  EXPECT_THAT(commandsFor(fit), ElementsAre("pelmora fit c.db --meter M --series S --band 0.25"));
  EXPECT_THAT(std::string(noCurveTrouble(fit).remedy()), HasSubstr("try --band 0.25"));
}

TEST(advised_command, has_no_band_where_a_point_is_off_by_more_than_the_curve) {
  calibration::Fit fit = flatFit();
  fit.fitted(1, 1) = 300;
  fit.outcome.Equations = {flatEquation("Near")};
  EXPECT_THAT(commandsFor(fit), IsEmpty());
}

TEST(advised_command, leaves_out_an_equation_with_a_pole_inside_the_range) {
  calibration::Fit fit = flatFit();
  fit.settings.choice = calibration::Choice::adjustedR2;
  fit.min = 0.4;
  auto equation = flatEquation("TC", 90);
  equation.Expression = reciprocal;
  fit.outcome.Equations = {equation};
  EXPECT_THAT(commandsFor(fit), Contains("pelmora fit c.db --meter M --series S --without TC"));
}

TEST(advised_command, keeps_what_was_asked_for) {
  calibration::Fit fit = flatFit();
  fit.outcome.Equations = {flatEquation("Near")};
  FitCall asked = call();
  asked.calibration = 2;
  asked.min = 10.5;
  asked.tests.points = 60;
  asked.tests.equations = "own list.txt";
  asked.choices.given.choice = calibration::Choice::trusted;
  asked.choices.given.cutsOverlap = false;
  asked.choices.without = {"A b"};
  asked.ratio = true;
  EXPECT_THAT(commandsFor(fit, asked),
              ElementsAre("pelmora fit c.db --meter M --calibration 2 --series S --min 10.5 "
                          "--points 60 --band 0.25 --equations 'own list.txt' --choose trusted "
                          "--without 'A b' --no-cut --ratio"));
}

TEST(advised_command, excludes_the_points_of_each_part_with_a_reason) {
  calibration::Fit fit = flatFit();
  fit.trust.emplace();
  const auto judged = [](int part, std::size_t number, double off) {
    return calibration::JudgedPoint{part, number, 100, 100, calibration::PointUse::distrusted,
                                    off,  off,    0.1};
  };
  fit.trust->judged = {judged(1, 3, 0.9), judged(2, 5, -1.2), judged(1, 7, 2.0)};
  EXPECT_THAT(commandsFor(fit),
              ElementsAre("pelmora exclude c.db --meter M --series S --part 1 --point 3 --point 7 "
                          "--reason 'up to 20 sigma off their neighbours'",
                          "pelmora exclude c.db --meter M --series S --part 2 --point 5 --reason "
                          "'12 sigma off its neighbours'"));
}

TEST(advised_command, lists_points_that_are_too_many_to_exclude_by_number) {
  static_assert(mostSuggestedPoints == calibration::mostNamedPoints);
  calibration::Fit fit = flatFit();
  fit.trust.emplace();
  for (std::size_t number = 1; number <= mostSuggestedPoints; ++number)
    fit.trust->judged.push_back(
        {1, number, 100, 100, calibration::PointUse::distrusted, 2.0, 2.0, 0.1});
  const auto named = commandsFor(fit);
  ASSERT_EQ(named.size(), 1U);
  EXPECT_THAT(named.front(), HasSubstr("pelmora exclude c.db"));
  EXPECT_THAT(named.front(), HasSubstr("--point 20 "));
  fit.trust->judged.push_back(fit.trust->judged.front());
  EXPECT_THAT(commandsFor(fit), ElementsAre("pelmora points c.db --meter M --series S"));
  EXPECT_THAT(stepLines(fit, stepsFor(fit, call())), HasSubstr("--all-between LOW:HIGH"));
}

TEST(advice_without_a_solution, counts_the_points_that_are_missing) {
  const auto equation = outcome(EquationVerdict::noSolution, "a+b*log(x)+c*log(x)^2+d*log(x)^3");
  EXPECT_THAT(solutionAdvice(flatFit(), equation),
              HasSubstr("it has 4 parameters, the series 3 points"));
}

TEST(advice_without_a_solution, counts_parameters_as_the_engine_does) {
  EXPECT_THAT(solutionAdvice(flatFit(), outcome(EquationVerdict::noSolution, "a+2e3*b*X+c*x^2")),
              HasSubstr("it has 3 parameters, the series 3 points"));
  EXPECT_THAT(solutionAdvice(flatFit(), outcome(EquationVerdict::noSolution, "a+b*(")),
              HasSubstr("an expression that can be read"));
}

TEST(advice_without_a_solution, wants_positive_roshko_for_logarithms) {
  calibration::Fit fit = flatFit();
  fit.fitted(0, 0) = -1;
  EXPECT_THAT(solutionAdvice(fit, outcome(EquationVerdict::noSolution, "a+b*ln(x)")),
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

TEST(line_of_trouble, names_the_equation_that_came_nearest) {
  calibration::Fit fit = flatFit();
  fit.outcome.Equations = {flatEquation("Far", 90), flatEquation("Near"),
                           outcome(EquationVerdict::noSolution, "a"),
                           outcome(EquationVerdict::notTried, "a")};
  EXPECT_THAT(noCurveTrouble(fit).what(), HasSubstr("nearest was Near"));
}

TEST(line_of_trouble, says_what_about_the_points_is_wrong) {
  calibration::Fit fit = flatFit();
  fit.trouble = "3 distinct flows are too few";
  EXPECT_STREQ(noCurveTrouble(fit).what(),
               "no curve for series 'S' of meter 'M': 3 distinct flows are too few");
}

}  // namespace
}  // namespace pelmora::cli
