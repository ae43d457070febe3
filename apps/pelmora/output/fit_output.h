// A fit as tables and as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/checked_fit.h"
#include "apps/pelmora/output/fit_advice.h"
#include "apps/pelmora/output/standard_output.h"
#include "report/json_values.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace pelmora::cli {

// The points that the merge cut and how far off they lie; empty if there are none.
[[nodiscard]] std::string cutLines(const calibration::Fit& fit);
// The smooth curve by which a trusted fit judged; empty for any other.
[[nodiscard]] std::string referenceLine(const calibration::Fit& fit);
// Every equation of the fit; below the table a paragraph for each reason for which some were
// rejected, and the warnings.
[[nodiscard]] std::string equationTable(const calibration::Fit& fit);
// What the tests cannot see in the chosen curve, a paragraph each.
[[nodiscard]] std::string warningLines(const calibration::Fit& fit);
// One line for each series: its chosen equation and how well it fits.
[[nodiscard]] std::string chosenTable(const std::vector<CheckedFit>& fits);

[[nodiscard]] nlohmann::json fitJson(const CheckedFit& checked, const FitCall& call);

using report::jsonText;
using report::meterJson;
using report::pointsJson;

}  // namespace pelmora::cli
