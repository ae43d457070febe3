// A report as flat tables: what CSV and spreadsheet hold.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <pelmora/types.h>

#include <string>
#include <vector>

namespace pelmora::report {

struct ReportTable {
  std::string name;
  std::vector<std::string> columns;      // names as JSON has them
  std::vector<std::vector<Value>> rows;  // as many values as columns; null: not known
};

// calibration, details, setups, results, flows, series, points, merged, curve, uncertainty,
// budget, equations, parameters, warnings, shifts, history and reports, each with its columns even
// where it has no rows.
[[nodiscard]] std::vector<ReportTable> reportTables(const Report& report);

}  // namespace pelmora::report
