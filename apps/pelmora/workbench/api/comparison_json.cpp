// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/api/comparison_json.h"

#include <pelmora/calibration/curve.h>

#include <nlohmann/json.hpp>

namespace pelmora::cli::workbench {

nlohmann::json comparisonJson(const PointArray& earlier, const PointArray& now) {
  if (earlier.size() < 2 || now.size() < 2) return {};
  const calibration::Comparison change = calibration::compareCurves(earlier, now);
  if (change.shifts.empty()) return {};
  nlohmann::json shifts = nlohmann::json::array();
  for (const calibration::Shift& shift : change.shifts)
    shifts.push_back({shift.roshko, shift.percent});
  const calibration::Shift& largest = change.largest();
  return {{"meanPercent", change.meanPercent},
          {"largest", {{"roshko", largest.roshko}, {"percent", largest.percent}}},
          {"shifts", shifts}};
}

}  // namespace pelmora::cli::workbench
