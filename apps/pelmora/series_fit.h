// One fit of a stored series, from the checks to the stored curve.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/curve_session.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/trouble.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::cli {

// Per cent. Reading a table of 40 points linearly over the three and a half decades of two fluids
// takes up to 0.2 % of it, the noise of a good calibration the rest.
inline constexpr double defaultBand = 0.3;

struct FitOptions {
  std::optional<double> min, max;  // Roshko; absent: that end of the merged points
  std::int16_t points = 40;
  double band = defaultBand;
  bool ratio = false, inverted = false, ignoreResiduals = false;
  std::optional<RangeAnswer> onRange;        // absent: the operator is asked, or else it is refused
  std::string equations;                     // folder or file; empty: the built-in equations
  std::optional<std::string> keptEquations;  // the text itself, in place of `equations`
};

struct SeriesFit {
  std::string series;
  std::int32_t seriesID = 0, meterID = 0;
  std::array<std::size_t, 4> rawPoints{};
  FitOptions options;
  double min = 0, max = 0;  // of the predicted curve
  PointArray merged, curve;
  FitOutcome outcome;
  std::string report;
  std::optional<std::string> equations;  // the text of the equation file; absent: the built-in ones
  bool isWholeRange = false;             // the curve reaches over the merged points
  std::optional<Trouble> trouble;        // no curve: why, and what would help
};

// Fits a series that was read with `meter` and stores nothing. Where no equation passes, `trouble`
// tells why.
//
// Errors: Trouble before the fit: too few points, a range outside the raw points.
[[nodiscard]] SeriesFit tryStored(CurveSession& session, const MeterInfo& meter,
                                  const SeriesInfo& stored, const FitOptions& options);

}  // namespace pelmora::cli
