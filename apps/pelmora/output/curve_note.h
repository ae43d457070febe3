// A note on standard error that a stored curve is older than its points.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/values.h>

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace pelmora::cli {

// One line for all of them, with the command that fits them again; nothing if no curve is outdated.
// The curves are of one calibration.
//
// calibration: as it was asked for; negative for the latest.
void noteOldCurves(const std::string& database, int calibration,
                   const std::vector<calibration::StoredSeries>& series);

// The member "curveAges": name and age of each series.
[[nodiscard]] nlohmann::json curveAgesJson(const std::vector<calibration::StoredSeries>& series);

}  // namespace pelmora::cli
