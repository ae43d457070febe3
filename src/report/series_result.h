// What a certificate says of one series in a few numbers.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/stated_uncertainty.h"

#include <pelmora/calibration/points.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::report {

// A raw point with its distance from the curve that the report shows.
struct MeasuredPoint : calibration::RawPoint {
  // In per cent of the curve, positive above it. The curve is the stored table, or the best attempt
  // if none is stored, read linearly between its points, as the band test reads it. Absent beyond
  // the curve's ends.
  std::optional<double> deviationPercent{};
  // Of a used point's value; see uncertainty in SeriesReport.
  std::optional<StatedUncertainty> uncertainty{};

  [[nodiscard]] bool isCut() const { return state == calibration::PointState::cut; }
  [[nodiscard]] bool isExcluded() const { return state == calibration::PointState::excluded; }
  [[nodiscard]] bool isSetAside() const { return state == calibration::PointState::distrusted; }
};

// The used points of one fluid at one nominal flow.
struct FlowResult {
  int part = 0;
  std::string fluid;
  double nominalFlow = 0;
  std::size_t points = 0;
  double meanFactor = 0;
  // Largest difference of two deviations from the curve, in which the different Roshko numbers of
  // the points play no part. Absent for a single point.
  std::optional<double> repeatabilityPercent{};
  // Mean deviation with falling flow less that with rising flow; absent if one of them is missing.
  std::optional<double> hysteresisPercent{};
};

struct SeriesResult {
  std::size_t used = 0, cut = 0, excluded = 0, outside = 0, distrusted = 0;
  // Of the used points.
  std::optional<double> lowestRoshko{}, highestRoshko{}, lowestFlow{}, highestFlow{};
  // Highest over lowest flow; of Roshko numbers if the flows are not known.
  std::optional<double> turndown{};
  // (largest + smallest) / 2 of the K factors, and half their difference in per cent of it.
  std::optional<double> meanFactor{}, linearityPercent{};
  // The largest deviation from the curve of a point that nobody excluded, signed, and where: of the
  // used points and of the distrusted ones, since leaving out a measurement is a person's decision.
  std::optional<double> worstPercent{};
  double worstRoshko = 0;
  bool worstIsDistrusted = false;
  std::vector<FlowResult> flows;  // by part and flow; empty if nominal flows are not recorded
  std::optional<double> repeatabilityPercent{}, hysteresisPercent{};  // largest of the flows
  std::optional<double> limitPercent{};
  // Whether the largest deviation is within the limit (simple acceptance); absent without a limit
  // or a deviation.
  std::optional<bool> passes{};
};

struct RawPart;

// Source: the linearity is that of ANSI/ISA-RP31.1, the decision rule that of
// ILAC-G8:09/2019, 4.2.1.
[[nodiscard]] SeriesResult resultOf(const std::vector<RawPart>& parts,
                                    std::optional<double> limitPercent);

}  // namespace pelmora::report
