// A stored curve's values between its points, with their uncertainty.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <optional>
#include <span>

namespace pelmora::report {

struct CurveValue {
  double roshko = 0, strouhal = 0;
  // Half widths of the 95 % bands in units of the value that was asked for; absent where they are
  // not known.
  std::optional<double> confidence, prediction;
  bool isExtrapolated =
      false;  // beyond the ends: on the straight line of the last two points, without a band
};

// Read as a flow computer reads the table: linearly between neighbouring points, bands likewise.
//
// curve: two points or more, Roshko strictly rising.  Errors: Error 5 (invalid argument) for
// another curve.
[[nodiscard]] CurveValue strouhalAt(std::span<const CurvePoint> curve, double roshko);

// The other way round; the bands are those of Strouhal over the slope of the table.
//
// Errors: Error 5 for a curve as above, where Strouhal does not strictly rise or fall all along (it
// names the
//         Roshko number at which it turns), and where the straight line beyond an end gets there at
//         no Roshko number above 0.
[[nodiscard]] CurveValue roshkoAt(std::span<const CurvePoint> curve, double strouhal);

}  // namespace pelmora::report
