// How a meter changes from one calibration to the next.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/fitted_curve.h>
#include <pelmora/export.h>

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace pelmora::calibration {

// The change of a curve at one Roshko number, in per cent of the earlier value, with its expanded
// uncertainty. An error that the stand makes in both calibrations alike is not part of it.
struct CurveShift {
  double roshko = 0, percent = 0;
  double uncertaintyPercent = 0, coverageFactor = 0;
  double en = 0;  // percent / uncertaintyPercent
  [[nodiscard]] bool isSignificant() const { return en > 1 || en < -1; }
};

// Nothing beyond either curve, where an uncertainty is not known, or where the calibrations share
// all of it.
//
// Errors: BadData as FittedCurve::at().
[[nodiscard]] PELMORA_API std::optional<CurveShift> shiftOf(const FittedCurve& earlier,
                                                            const FittedCurve& now, double roshko,
                                                            const EvaluateOptions& options = {});

// A calibration in a drift: its curve and its date.
struct DatedCurve {
  int calibration = 0;
  std::string date;             // as stored; empty if it is not known
  std::optional<double> years;  // the date as a year and its fraction
  FittedCurve curve;
};

// A date such as 2026-11-21, 11/21/2026 or 21.11.2026 as a year and its fraction; empty for any
// other text, and for a date such as 03/04/2026, which may be in March or in April.
[[nodiscard]] PELMORA_API std::optional<double> yearsOf(const std::string& date);

struct DriftOptions {
  // Where to look. Empty: at five Roshko numbers, spaced evenly in the logarithm over the range
  // that all curves share.
  std::vector<double> roshko{};
  // The largest change that the application allows, in per cent. Absent: no interval is
  // recommended.
  std::optional<double> limitPercent{};
  EvaluateOptions evaluate{};
};

struct DriftValue {
  double strouhal = 0, percent = 0;  // percent: of the first calibration
  std::optional<Budget> budget{};
  std::optional<CurveShift> sinceFirst{}, sincePrevious{};
  bool isBeyondLimits = false;  // outside the control limits
};

// A chart of individual values: centre and +- 3 sigma, in per cent of the first calibration.
struct ControlChart {
  double centre = 0, low = 0, high = 0, sigma = 0;
  // Whether sigma is the uncertainty of a calibration, because the changes between calibrations are
  // smaller. Otherwise it comes from these changes.
  bool isFromUncertainty = false;
};

// A recommended interval, with the numbers that it was computed from.
struct IntervalAdvice {
  double years = 0;       // 0: the scatter alone exceeds the limit
  bool isCapped = false;  // at twice the longest interval so far
  double ratePercentPerYear = 0, rateUncertainty = 0, dispersionPercent = 0;
  double coverageFactor = 0, longestSoFar = 0;
};

struct DriftPlace {
  double roshko = 0;
  std::vector<DriftValue> values;  // one for each of Drift::calibrations
  std::optional<ControlChart> chart{};
  std::optional<IntervalAdvice> interval{};
};

struct Drift {
  std::vector<DatedCurve> calibrations;
  std::vector<DriftPlace> places;
  // The shortest interval of all places, in years, or why there is none.
  std::optional<double> intervalYears{};
  std::string whyNoInterval;
  [[nodiscard]] PELMORA_API std::string assumptions() const;
};

// Errors: BadData for fewer than two curves, for curves without a common range, for a Roshko number
//         beyond that range, and as for FittedCurve::at().
[[nodiscard]] PELMORA_API Drift driftOf(std::vector<DatedCurve> calibrations,
                                        const DriftOptions& options = {});

}  // namespace pelmora::calibration
