// What a calibration and a series hold, as tables and as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/output/shown_units.h"

#include <pelmora/calibration/values.h>

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace pelmora::cli {

// The runs and the series of one calibration.
struct CalibrationContents {
  std::string database;
  calibration::Meter meter;
  std::vector<calibration::Run> runs;
  std::vector<calibration::StoredSeries> series;
};
[[nodiscard]] std::string calibrationText(const CalibrationContents& contents);
[[nodiscard]] nlohmann::json calibrationValue(const CalibrationContents& contents);
[[nodiscard]] std::string calibrationJson(const CalibrationContents& contents);

// One series: counts, the fitted curve and the report as it is stored.
[[nodiscard]] std::string seriesText(const calibration::StoredSeries& series,
                                     const ShownUnits& units);
[[nodiscard]] std::string seriesJson(const calibration::StoredSeries& series,
                                     const ShownUnits& units);

}  // namespace pelmora::cli
