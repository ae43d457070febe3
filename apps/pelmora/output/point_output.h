// Raw points and exclusions as tables and as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/points.h>
#include <pelmora/calibration/values.h>

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace pelmora::cli {

// A line for each point.
[[nodiscard]] std::string pointsTable(const std::vector<calibration::RawPoint>& points);
// "24 points, 2 of them excluded, 1 cut by the merge"
[[nodiscard]] std::string pointCounts(const std::vector<calibration::RawPoint>& points);
struct PointsOfSeries {
  std::string series;
  std::size_t points = 0;
};
// "8 points of Rotor A, 3 of Rotor B"; series without points are left out. Empty if none is left.
[[nodiscard]] std::string pointsBySeries(const std::vector<PointsOfSeries>& all);
// A paragraph for each excluded point: by whom, when and why.
[[nodiscard]] std::string exclusionLines(const std::vector<calibration::RawPoint>& points);
[[nodiscard]] std::string exclusionLines(const std::vector<calibration::ExcludedPoint>& points);
[[nodiscard]] nlohmann::json excludedPointJson(const calibration::ExcludedPoint& point);

[[nodiscard]] std::string changedPointsTable(const std::vector<calibration::ChangedPoint>& points);
[[nodiscard]] nlohmann::json changedPointJson(const calibration::ChangedPoint& point);

// A paragraph for each exclusion that an operation has ended.
[[nodiscard]] std::string droppedLines(const std::vector<calibration::DroppedExclusion>& dropped);
// What became of exclusions when points came again; empty if there were none.
[[nodiscard]] std::string exclusionText(std::size_t excluded,
                                        const std::vector<calibration::DroppedExclusion>& dropped);
[[nodiscard]] nlohmann::json droppedJson(const calibration::DroppedExclusion& dropped);

}  // namespace pelmora::cli
