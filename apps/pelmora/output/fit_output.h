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
// The reference curve of a trusted fit; empty for any other fit.
[[nodiscard]] std::string referenceLine(const calibration::Fit& fit);
// A table of the equations, a paragraph for each reason to reject some of them, and the warnings.
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
