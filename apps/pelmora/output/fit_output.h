// A fit as tables and as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/series_fit.h"
#include "apps/pelmora/stand_import.h"
#include "report/json_values.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace pelmora::cli {

// Every equation of the fit, and below the table one paragraph for each one that was rejected: the
// test, the point and what would help; then the warnings.
[[nodiscard]] std::string equationTable(const SeriesFit& fit);
// What the tests cannot see in the chosen curve, a paragraph each.
[[nodiscard]] std::string warningLines(const SeriesFit& fit);
// One line for each series: its chosen equation and how well it fits.
[[nodiscard]] std::string chosenTable(const std::vector<SeriesFit>& fits);
// The meter and where its data stand.
[[nodiscard]] std::string importHead(const CurveSession& session, const ImportOutcome& import);
// One line for each set-up with its raw part, and one for each derived series.
[[nodiscard]] std::string importTable(const ImportOutcome& import);

[[nodiscard]] nlohmann::json fitJson(const SeriesFit& fit);
[[nodiscard]] nlohmann::json importJson(const ImportOutcome& import);
using report::jsonText;
using report::meterJson;
using report::pointsJson;
using report::setupsJson;

}  // namespace pelmora::cli
