// The expanded uncertainty that a report states: one rounding for all of its formats.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/fitted_curve.h>

#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace pelmora::report {

// U of one value, to two significant digits and never below the laboratory's CMC.
struct StatedUncertainty {
  double expanded = 0, percent = 0;  // in the unit of the value; in per cent of it
  double coverageFactor = 0, probability = 0;
  bool isCmc = false;
};

// Nothing without a budget, and for an uncertainty of 0.
[[nodiscard]] std::optional<StatedUncertainty> stated(
    const std::optional<calibration::Budget>& budget);

// What the values of `all` span.
struct UncertaintySpan {
  double lowestPercent = 0, highestPercent = 0;
  double lowestFactor = 0, highestFactor = 0;
  double probability = 0;
};

// Nothing if one of the values has no uncertainty.
[[nodiscard]] std::optional<UncertaintySpan> spanOf(
    const std::vector<std::optional<StatedUncertainty>>& all);

// Of the stored curve of a series, whose table is read linearly between its points. The reading
// error up to the next point is part of U.
struct UncertaintyStatement {
  std::string whyNone;  // a clause; empty if U is stated at every point of the table
  std::string stand;    // whose uncertainty U contains; may be unnamed
  bool hasStand = false;
  double cmcPercent = 0;
  UncertaintySpan span;
  std::vector<std::optional<StatedUncertainty>> curve;  // one per point of the table
  struct Place {
    double roshko = 0, strouhal = 0;
    calibration::Budget budget;
  };
  std::vector<Place> budgets;  // at the ends and in the middle of the table

  [[nodiscard]] bool isStated() const { return whyNone.empty(); }
};

// Errors: Cancelled.
[[nodiscard]] UncertaintyStatement uncertaintyStatementOf(const calibration::FittedCurve& curve,
                                                          const std::stop_token& stop = {});

// "k = 2.00, 95.45 %", "k = 2.00 to 2.06, 95.45 %".
[[nodiscard]] std::string coverageText(const UncertaintySpan& span);
// In per cent: "0.066", "0.062 to 0.066".
[[nodiscard]] std::string percentSpanText(const UncertaintySpan& span);
// What U contains, or why none is stated, in one or two sentences.
[[nodiscard]] std::string uncertaintyText(const UncertaintyStatement& statement);
// What U of the measured points contains; empty without a span.
[[nodiscard]] std::string pointUncertaintyText(const UncertaintyStatement& statement,
                                               const std::optional<UncertaintySpan>& ofPoints);

}  // namespace pelmora::report
