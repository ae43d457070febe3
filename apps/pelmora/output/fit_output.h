// A fit as tables and as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/checked_fit.h"
#include "apps/pelmora/output/standard_output.h"
#include "report/json_values.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace pelmora::cli {

// Every equation of the fit, and below the table one paragraph for each one that was rejected: the
// test, the point and what would help; then the warnings.
[[nodiscard]] std::string equationTable(const calibration::Fit& fit);
// What the tests cannot see in the chosen curve, a paragraph each.
[[nodiscard]] std::string warningLines(const calibration::Fit& fit);
// One line for each series: its chosen equation and how well it fits.
[[nodiscard]] std::string chosenTable(const std::vector<CheckedFit>& fits);

[[nodiscard]] nlohmann::json fitJson(const CheckedFit& checked);

using report::jsonText;
using report::meterJson;
using report::pointsJson;
using report::setupsJson;

}  // namespace pelmora::cli
