// When a meter should be calibrated again.
// SPDX-License-Identifier: MIT
#pragma once

#include "drift/drift.h"

#include <cstddef>
#include <span>

namespace pelmora::drift {

// The interval is at most this many times the longest one so far: a straight line is not trusted
// far beyond what was seen.
inline constexpr double mostGrowth = 2;

// The advice, and what it is based on. The drift is assumed to be a straight line in time.
struct IntervalAdvice {
  double years = 0;                                    // 0: the scatter alone exceeds the limit
  bool isCapped = false;                               // by mostGrowth
  double ratePercentPerYear = 0, rateUncertainty = 0;  // of the first value; standard uncertainty
  double dispersionPercent = 0;  // standard deviation of a calibration about the line
  double coverageFactor = 0;
  std::size_t calibrations = 0;
  double longestSoFar = 0;  // years
};

// The method of control charts: dispersion and drift are computed from the calibrations at one
// point, and the interval is the time t until
//
//   |rate| t + k sqrt((u_rate t)^2 + dispersion^2) = limit,
//
// with k of Student's distribution with n - 2 degrees of freedom, for a probability of 95.45 %. The
// dispersion is never smaller than the independent uncertainty of a calibration. Where several
// Roshko numbers are examined, the shortest interval counts.
//
// history: in rising order of time.
// limitPercent: the largest change of the curve that the application allows.
// Errors:  BadData for fewer than three calibrations, times that do not rise, a first value of 0,
//          a limit that is not above 0.
// Source:  ILAC-G24:2022 / OIML D 10, method 2 (control chart).
[[nodiscard]] IntervalAdvice adviseInterval(std::span<const Calibrated> history,
                                            double limitPercent);

}  // namespace pelmora::drift
