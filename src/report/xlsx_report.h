// A report as an Excel workbook.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"
#include "report/report_tables.h"

#include <string>

namespace pelmora::report {

// The bytes of a workbook with one sheet for each table of report_tables.h, column names in its
// first row. Numbers are numbers, texts are never formulas.
//
// Errors: std::runtime_error if the workbook cannot be made; Unusable if libxlsxwriter cannot be
//         loaded or there is no room for a temporary file.
[[nodiscard]] std::string xlsxReport(const Report& report);

// A workbook of one table.
//
// Errors: as above.
[[nodiscard]] std::string xlsxTable(const ReportTable& table);

}  // namespace pelmora::report
