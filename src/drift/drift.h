// How a curve moves from one recalibration to the next.
// SPDX-License-Identifier: MIT
#pragma once

#include "uncertainty/pair_budget.h"

#include <span>
#include <vector>

namespace pelmora::drift {

// The curve at one fixed Roshko number in one calibration.
struct Calibrated {
  double years = 0;            // when, from any origin
  uncertainty::Budget budget;  // of its value
};

// The change since an earlier calibration, in per cent of it.
struct Shift {
  double percent = 0;
  double uncertaintyPercent = 0;  // expanded
  double coverageFactor = 0;
  // percent / uncertaintyPercent; beyond 1 in size, the shift is significant. Source: ISO/IEC
  // 17043:2023, B.3, with the uncertainty of the difference where both share a stand.
  double en = 0;
  [[nodiscard]] bool isSignificant() const { return en > 1 || en < -1; }
};

// What the stand does to both calibrations alike is not part of the uncertainty.
//
// Errors: BadData if the earlier value is 0, or the probabilities differ; a shift without any
//         uncertainty is refused as well.
[[nodiscard]] Shift shiftBetween(const uncertainty::Budget& earlier,
                                 const uncertainty::Budget& now);

// Shewhart's chart of individual values.
//
// Source: NIST/SEMATECH e-Handbook of Statistical Methods, 6.3.2.2: centre +- 3 / 1.128 times the
//         mean moving range.
struct ControlLimits {
  double centre = 0, low = 0, high = 0;  // in the unit of the values
  double sigma = 0;
  // Whether sigma comes from the uncertainty of the values, because the moving ranges of fewer than
  // `fewestValues` are not enough, or are smaller than it.
  bool isFromUncertainty = false;
};

inline constexpr std::size_t fewestValues = 5;

// values: by time. independent: the standard uncertainty of one value without what all share.
// Errors: BadData for fewer than two values, or values that are not finite.
[[nodiscard]] ControlLimits controlLimits(std::span<const double> values, double independent);

// The part of a budget that another calibration on the same stand does not share.
[[nodiscard]] double independentPart(const uncertainty::Budget& budget);

}  // namespace pelmora::drift
