// How a curve moves from one recalibration to the next.
// SPDX-License-Identifier: MIT
#pragma once

#include "uncertainty/pair_budget.h"

#include <cstddef>
#include <span>

namespace pelmora::drift {

// The curve at one fixed Roshko number in one calibration.
struct Calibrated {
  double years = 0;            // when, from any origin
  uncertainty::Budget budget;  // of its value
};

// The change since an earlier calibration, in per cent of the earlier value.
struct Shift {
  double percent = 0;
  double uncertaintyPercent = 0;  // expanded
  double coverageFactor = 0;
  // percent / uncertaintyPercent; beyond 1 in size, the shift is significant. Source: ISO/IEC
  // 17043:2023, B.3, with the uncertainty of the difference where both share a stand.
  double en = 0;
  [[nodiscard]] bool isSignificant() const { return en > 1 || en < -1; }
};

// An error that the stand makes in both calibrations alike cancels: it is not part of the
// uncertainty.
//
// Errors: BadData if the earlier value is 0, the probabilities differ, or the shift has no
//         uncertainty.
[[nodiscard]] Shift shiftBetween(const uncertainty::Budget& earlier,
                                 const uncertainty::Budget& now);

// Shewhart's chart of individual values.
//
// Source: NIST/SEMATECH e-Handbook of Statistical Methods, 6.3.2.2: centre +- 3 / 1.128 times the
//         mean moving range.
struct ControlLimits {
  double centre = 0, low = 0, high = 0;  // in the unit of the values
  double sigma = 0;  // from the moving ranges, but never below the uncertainty of a value
  bool isFromUncertainty = false;  // whether sigma is that uncertainty
};

// values: in rising order of time.
// independent: the standard uncertainty of one value without what all calibrations share.
// Errors: BadData for fewer than two values, or values that are not finite.
[[nodiscard]] ControlLimits controlLimits(std::span<const double> values, double independent);

// The standard uncertainty of a budget without what another calibration on the same stand shares.
[[nodiscard]] double independentPart(const uncertainty::Budget& budget);

}  // namespace pelmora::drift
