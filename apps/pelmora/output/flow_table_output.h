// Tables for flow computers, and stored points, as files for other programs.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_tables.h"

#include <pelmora/calibration/tables.h>
#include <pelmora/calibration/values.h>

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace pelmora::cli {

// Columns x, y and U, named with their units: "Roshko (Hz/cSt)".
[[nodiscard]] report::ReportTable flowTable(const calibration::FlowComputerTable& table);
// The table of `series` in the database at `location`.
[[nodiscard]] nlohmann::json flowTableJson(const calibration::FlowComputerTable& table,
                                           const std::string& location,
                                           const calibration::StoredSeries& series);
// Reading error, U and what it contains, in words.
[[nodiscard]] std::string flowTableText(const calibration::FlowComputerTable& table);

}  // namespace pelmora::cli
