// Tables for flow computers, and stored points, as files for other programs.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_tables.h"

#include <pelmora/calibration/tables.h>

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace pelmora::cli {

// How a CSV file is written.
struct CsvForm {
  char separator = ',', decimal = '.';
};

// A header line and the rows; numbers in their shortest exact form.
[[nodiscard]] std::string tableCsv(const report::ReportTable& table, const CsvForm& form);

// Columns x, y and U, named with their units: "Roshko (Hz/cSt)".
[[nodiscard]] report::ReportTable flowTable(const calibration::FlowComputerTable& table);
[[nodiscard]] nlohmann::json flowTableJson(const calibration::FlowComputerTable& table);
// Reading error, U and what it contains, in words.
[[nodiscard]] std::string flowTableText(const calibration::FlowComputerTable& table);

}  // namespace pelmora::cli
