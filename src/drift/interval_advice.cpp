// SPDX-License-Identifier: MIT
#include "drift/interval_advice.h"

#include "uncertainty/refusal.h"

#include <algorithm>
#include <cmath>

namespace pelmora::drift {
namespace {

using uncertainty::refuse;

void requireHistory(std::span<const Calibrated> history, double limitPercent) {
  if (history.size() < 3)
    refuse("an interval needs at least three calibrations", "keep the present interval until then");
  if (!(limitPercent > 0))
    refuse("the limit of the drift is not above 0 %", "state what change the application allows");
  if (history.front().budget.value == 0)
    refuse("the first curve is zero there", "choose another Roshko number");
  for (std::size_t i = 1; i < history.size(); ++i) {
    if (!(history[i].years > history[i - 1].years))
      refuse("the dates of the calibrations do not rise", "give each calibration its own date");
  }
}

// The least-squares line through the values, in per cent of the first one.
struct Line {
  double slope = 0, scatter = 0;
  double spread = 0;  // sum of squares of the times about their mean
};

Line lineOf(std::span<const Calibrated> history) {
  const auto n = static_cast<double>(history.size());
  const double unit = std::abs(history.front().budget.value) / 100;
  double meanTime = 0, meanValue = 0;
  for (const Calibrated& each : history) {
    meanTime += each.years / n;
    meanValue += each.budget.value / unit / n;
  }
  Line line;
  double joint = 0, squares = 0;
  for (const Calibrated& each : history) {
    const double t = each.years - meanTime, y = each.budget.value / unit - meanValue;
    line.spread += t * t;
    joint += t * y;
  }
  line.slope = joint / line.spread;
  for (const Calibrated& each : history) {
    const double y = each.budget.value / unit - meanValue;
    squares += std::pow(y - line.slope * (each.years - meanTime), 2);
  }
  line.scatter = std::sqrt(squares / (n - 2));
  return line;
}

}  // namespace

IntervalAdvice adviseInterval(std::span<const Calibrated> history, double limitPercent) {
  requireHistory(history, limitPercent);
  IntervalAdvice advice;
  advice.calibrations = history.size();
  double independent = 0;
  for (std::size_t i = 0; i < history.size(); ++i) {
    const uncertainty::Budget& budget = history[i].budget;
    independent = std::max(independent,
                           100 * independentPart(budget) / std::abs(history.front().budget.value));
    if (i > 0)
      advice.longestSoFar = std::max(advice.longestSoFar, history[i].years - history[i - 1].years);
  }
  const Line line = lineOf(history);
  advice.ratePercentPerYear = line.slope;
  advice.dispersionPercent = std::max(line.scatter, independent);
  advice.rateUncertainty = advice.dispersionPercent / std::sqrt(line.spread);
  advice.coverageFactor = uncertainty::coverageFactor(uncertainty::twoSigmaProbability,
                                                      static_cast<double>(history.size()) - 2);

  const auto reached = [&](double t) {
    return std::abs(line.slope) * t +
           advice.coverageFactor * std::hypot(advice.rateUncertainty * t, advice.dispersionPercent);
  };
  const double longest = mostGrowth * advice.longestSoFar;
  if (reached(0) >= limitPercent) return advice;
  advice.isCapped = reached(longest) <= limitPercent;
  double low = 0, high = longest;
  for (int i = 0; i < 60 && !advice.isCapped; ++i) {
    const double middle = (low + high) / 2;
    (reached(middle) < limitPercent ? low : high) = middle;
  }
  advice.years = advice.isCapped ? longest : low;
  return advice;
}

}  // namespace pelmora::drift
