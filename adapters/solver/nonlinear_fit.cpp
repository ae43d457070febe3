// SPDX-License-Identifier: MIT
#include "adapters/solver/nonlinear_fit.h"

#include "adapters/solver/expression_curve.h"
#include "adapters/solver/expression_model.h"
#include "adapters/solver/own_starts.h"
#include "adapters/solver/polish.h"
#include "adapters/solver/trust_region.h"
#include "base/number_text.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pelmora::solver {
namespace {

constexpr int usualIterations = 250, usualStarts = 10;
// Limit of the work of all searches, in plain operations: some seconds.
constexpr double mostWork = 1e8;
// The same of all attempts to polish an end, in double-double operations.
constexpr double mostPolish = 1e7;

}  // namespace

NonlinearEnd lowestMinimum(const RegressionModel& model, const std::vector<std::vector<double>>& starts,
                           const SolverSettings& settings) {
  SearchSettings search;
  search.iterations = settings.First > 0 ? settings.First : usualIterations;
  if (settings.ResidualTolerance > 0) search.tolerance = settings.ResidualTolerance;
  const std::vector<bool> linear = model.isLinearIn();
  const bool canProject = std::find(linear.begin(), linear.end(), true) != linear.end();
  double evaluationsLeft = mostWork / model.work();
  search.evaluationsLeft = &evaluationsLeft;
  std::vector<SearchEnd> ends;
  for (const auto& start : starts) {
    if (!ends.empty() && evaluationsLeft <= 0) break;
    if (canProject) {
      search.projected = linear;
      ends.push_back(searchFrom(model, start, search));
      search.projected.clear();
    }
    ends.push_back(searchFrom(model, start, search));
  }
  std::erase_if(ends, [](const SearchEnd& end) { return !std::isfinite(end.residualSquares); });
  if (ends.empty()) throw NoSolution{"the equation is not finite at some points for all starts tried"};
  std::stable_sort(ends.begin(), ends.end(), [](const SearchEnd& a, const SearchEnd& b) {
    return a.residualSquares < b.residualSquares;
  });
  double workLeft = mostPolish;
  std::string reason, firstReason;
  for (const SearchEnd& end : ends) {
    if (auto minimum = polish(model, end.parameters, workLeft, reason)) {
      const int iterations = end.iterations + minimum->iterations;
      return {std::move(minimum->parameters), std::move(minimum->fit), iterations};
    }
    if (firstReason.empty()) firstReason = reason;
  }
  throw NoSolution{firstReason};
}

Solution fitNonlinear(Expression expression, const Series& series, const SolverSettings& settings) {
  const std::size_t p = expression.letters().size();
  std::vector<std::vector<double>> starts;
  const auto model = makeExpressionModel(expression, series.x, series.y);
  if (!settings.StartValues.empty()) {
    if (settings.StartValues.size() != p) {
      throw NoSolution{numberText(settings.StartValues.size()) + " start values for " + numberText(p) +
                       " parameters"};
    }
    starts.push_back(settings.StartValues);
  } else {
    const int count = settings.Second > 0 ? settings.Second : usualStarts;
    starts = ownStarts(expression, series.x, series.y, static_cast<std::size_t>(count));
  }
  NonlinearEnd end = lowestMinimum(*model, starts, settings);
  Solution solution = solutionOfTerms(end.fit, series.x.size(), series.squaresAboutMean, 1);
  solution.parameters = std::move(end.parameters);  // the fit's own are the last step
  solution.statistics.Iterations = end.iterations;
  solution.curve = std::make_shared<ExpressionCurve>(std::move(expression), solution.parameters, solution.fit);
  return solution;
}

}  // namespace pelmora::solver
