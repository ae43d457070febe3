// SPDX-License-Identifier: MIT
#include "drift/drift.h"

#include "uncertainty/refusal.h"

#include <algorithm>
#include <cmath>

namespace pelmora::drift {
namespace {

using uncertainty::refuse;

// The mean range of two normal values over their standard deviation, 2 / sqrt(pi).
constexpr double rangeOfTwo = 1.1283791670955126;
constexpr double limitSigmas = 3;

}  // namespace

Shift shiftBetween(const uncertainty::Budget& earlier, const uncertainty::Budget& now) {
  if (earlier.value == 0) {
    refuse("the earlier curve is zero there, so the shift has no value in per cent",
           "choose another Roshko number");
  }
  const uncertainty::Budget difference = uncertainty::pairBudget(
      now.value - earlier.value, {&now, 1}, {&earlier, -1}, uncertainty::SharedBy::calibrations);
  if (!(difference.expanded > 0)) {
    refuse("the shift has no uncertainty: both budgets contain only what they share",
           "add reproducibility to the uncertainty of the stand");
  }
  const double size = std::abs(earlier.value) / 100;
  Shift shift;
  shift.percent = difference.value / size;
  shift.uncertaintyPercent = difference.expanded / size;
  shift.coverageFactor = difference.coverageFactor;
  shift.en = difference.value / difference.expanded;
  return shift;
}

ControlLimits controlLimits(std::span<const double> values, double independent) {
  if (values.size() < 2)
    refuse("a control chart needs at least two calibrations", "calibrate the meter again");
  ControlLimits limits;
  double ranges = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!std::isfinite(values[i]))
      refuse("a value of the control chart is not finite", "leave this calibration out");
    limits.centre += values[i] / static_cast<double>(values.size());
    if (i > 0) ranges += std::abs(values[i] - values[i - 1]);
  }
  const double seen = ranges / static_cast<double>(values.size() - 1) / rangeOfTwo;
  limits.isFromUncertainty = seen < independent;
  limits.sigma = std::max(seen, independent);
  limits.low = limits.centre - limitSigmas * limits.sigma;
  limits.high = limits.centre + limitSigmas * limits.sigma;
  return limits;
}

double independentPart(const uncertainty::Budget& budget) {
  double variance = 0;
  for (const uncertainty::BudgetRow& row : budget.rows)
    variance += row.contribution * row.contribution * (1 - row.betweenCalibrations);
  return std::sqrt(variance);
}

}  // namespace pelmora::drift
