// SPDX-License-Identifier: MIT
#include <pelmora/calibration/ranking.h>

#include <gmock/gmock.h>

namespace pelmora::calibration {
namespace {

EquationOutcome outcome(const std::string& name, EquationVerdict verdict, double adjusted = 0) {
  EquationOutcome equation;
  equation.Name = name;
  equation.Verdict = verdict;
  equation.Statistics.AdjustedRSquared = adjusted;
  return equation;
}

std::vector<std::string> ranked(std::vector<EquationOutcome> equations) {
  FitOutcome fit;
  fit.Equations = std::move(equations);
  std::vector<std::string> names;
  for (const RankedEquation& equation : ranking(fit))
    names.push_back(std::to_string(equation.rank) + equation.outcome.Name);
  return names;
}

TEST(ranking, goes_from_the_chosen_one_to_those_that_were_not_tried) {
  using enum EquationVerdict;
  EXPECT_THAT(ranked({outcome("untried", notTried), outcome("unsolved", noSolution),
                      outcome("outside", bandTestFailed, 0.999), outcome("good", accepted, 0.9),
                      outcome("better", accepted, 0.95), outcome("best", chosen, 0.94),
                      outcome("wild", residualTestFailed, 0.5)}),
              testing::ElementsAre("1best", "2better", "3good", "4outside", "5wild", "6unsolved",
                                   "7untried"));
}

TEST(ranking, keeps_equals_in_the_order_in_which_they_are_tried) {
  using enum EquationVerdict;
  EXPECT_THAT(ranked({outcome("first", notTried), outcome("last", notTried)}),
              testing::ElementsAre("1last", "2first"));
}

}  // namespace
}  // namespace pelmora::calibration
