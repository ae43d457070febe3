// SPDX-License-Identifier: MIT
#include "solver/nonlinear/nonlinear_fit.h"

#include "solver/linear/expression_curve.h"
#include "solver/nonlinear/expression_model.h"
#include "solver/nonlinear/own_starts.h"
#include "solver/nonlinear/polish.h"
#include "solver/nonlinear/trust_region.h"
#include "base/number_text.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace pelmora::solver {
namespace {

constexpr int usualIterations = 250, usualStarts = 10;
// Limit of the work of all searches, in plain operations: some seconds.
constexpr double mostWork = 1e8;
// The same of all attempts to polish an end, in double-double operations.
constexpr double mostPolish = 1e7;
// Shares of the sum of y^2 and of another residual sum of squares.
constexpr double exactFit = 1e-28, sameMinimum = 1e-6;

void requireNotStopped(const SolverSettings& settings) {
  if (settings.StopRequested && settings.StopRequested())
    throw NoSolution{"the fit was stopped before it came to an end"};
}

}  // namespace

NonlinearEnd lowestMinimum(const RegressionModel& model,
                           const std::vector<std::vector<double>>& starts,
                           const SolverSettings& settings) {
  SearchSettings search;
  search.iterations = settings.First > 0 ? settings.First : usualIterations;
  if (settings.ResidualTolerance > 0) search.tolerance = settings.ResidualTolerance;
  const std::vector<bool> linear = model.isLinearIn();
  const bool canProject = std::find(linear.begin(), linear.end(), true) != linear.end();
  double evaluationsLeft = mostWork / model.work();
  search.evaluationsLeft = &evaluationsLeft;
  search.stopRequested = settings.StopRequested;
  std::vector<SearchEnd> ends;
  for (const auto& start : starts) {
    if (!ends.empty() && evaluationsLeft <= 0) break;
    if (canProject) {
      search.projected = linear;
      ends.push_back(searchFrom(model, start, search));
      search.projected.clear();
    }
    ends.push_back(searchFrom(model, start, search));
    requireNotStopped(settings);
  }
  std::erase_if(ends, [](const SearchEnd& end) { return !std::isfinite(end.residualSquares); });
  if (ends.empty())
    throw NoSolution{"the equation is not finite at some points for all starts tried"};
  std::stable_sort(ends.begin(), ends.end(), [](const SearchEnd& a, const SearchEnd& b) {
    return a.residualSquares < b.residualSquares;
  });
  double workLeft = mostPolish;
  std::string reason, firstReason;
  for (const SearchEnd& end : ends) {
    requireNotStopped(settings);
    if (auto minimum = polish(model, end.parameters, workLeft, reason)) {
      const int iterations = end.iterations + minimum->iterations;
      return {std::move(minimum->parameters), std::move(minimum->fit), iterations};
    }
    if (firstReason.empty()) firstReason = reason;
  }
  throw NoSolution{firstReason};
}

namespace {

DoubleDouble squaresOf(const NonlinearEnd& end) {
  const Factor& factor = end.fit->factor;
  return factor.residualSquares[factor.rank];
}

// The minimum that the host's start leads to, or none with its reason.
std::optional<NonlinearEnd> minimumFrom(const RegressionModel& model,
                                        const SolverSettings& settings, std::string& reason) {
  const std::vector<double>& start = settings.StartValues;
  if (start.empty()) return std::nullopt;
  if (start.size() != model.parameters()) {
    throw NoSolution{numberText(start.size()) + " start values for " +
                     numberText(model.parameters()) + " parameters"};
  }
  for (const double value : start) {
    if (!std::isfinite(value)) throw NoSolution{"a start value is not finite"};
  }
  try {
    return lowestMinimum(model, {start}, settings);
  } catch (const NoSolution& failure) {
    reason = failure.reason;
    return std::nullopt;
  }
}

// A start may lie in the wrong valley: own starts are tried beside it, and only a minimum that is
// lower by more than rounding displaces its own.
NonlinearEnd bestMinimum(const RegressionModel& model, const Expression& expression,
                         const Series& series, const SolverSettings& settings) {
  std::string reason;
  auto nearby = minimumFrom(model, settings, reason);
  if (nearby && squaresOf(*nearby).hi <= exactFit * series.squares.hi) return *std::move(nearby);
  const int count = settings.Second > 0 ? settings.Second : usualStarts;
  try {
    const auto starts = ownStarts(expression, series.x, series.y, static_cast<std::size_t>(count));
    NonlinearEnd elsewhere = lowestMinimum(model, starts, settings);
    if (!nearby || squaresOf(elsewhere).hi < (1 - sameMinimum) * squaresOf(*nearby).hi)
      return elsewhere;
  } catch (const NoSolution& failure) {
    if (!nearby) throw NoSolution{reason.empty() ? failure.reason : reason};
  }
  return *std::move(nearby);
}

}  // namespace

Solution fitNonlinear(Expression expression, const Series& series, const SolverSettings& settings) {
  const auto model = makeExpressionModel(expression, series.x, series.y);
  NonlinearEnd end = bestMinimum(*model, expression, series, settings);
  Solution solution = solutionOfTerms(end.fit, series.x.size(), series.squaresAboutMean, 1);
  solution.parameters = std::move(end.parameters);  // the fit's own are the last step
  solution.statistics.Iterations = end.iterations;
  solution.curve =
      std::make_shared<ExpressionCurve>(std::move(expression), solution.parameters, solution.fit);
  return solution;
}

}  // namespace pelmora::solver
