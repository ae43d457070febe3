// One fit of a stored series, from the checks to the stored curve.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/curve_session.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/stored_change.h"
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

// Takes over what the command line says.
void take(const FitTests& tests, FitOptions& options);

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
  bool isStored = false;
  bool changedMeanwhile = false;   // by another program during a first fit; this is the second
  std::optional<Trouble> trouble;  // no curve: why, and what would help
};

// Whether a raw part has two points or more: the merge leaves out a part of a single point.
[[nodiscard]] bool hasPointsToFit(const SeriesInfo& stored);

// Fits the series and stores nothing. Where no equation passes, `trouble` tells why.
//
// Errors: Trouble before the fit: unknown series, too few points, a range outside the raw points.
[[nodiscard]] SeriesFit trySeries(CurveSession& session, const MeterInfo& meter,
                                  const std::string& series, const FitOptions& options);

// The same for a series whose raw points have been read; `meter` as it was read with them.
[[nodiscard]] SeriesFit tryStored(CurveSession& session, const MeterInfo& meter,
                                  const SeriesInfo& stored, const FitOptions& options);

// Stores the curve of a fit and its settings in place of the old ones, which `change` keeps. The
// caller sees to it that the series is still as it was fitted: fitSeries of checked_fit.h does.
//
// Errors: Trouble database. Nothing is final before change.finish().
void storeCurve(StoredChange& change, const MeterInfo& meter, SeriesFit& fit);

}  // namespace pelmora::cli
