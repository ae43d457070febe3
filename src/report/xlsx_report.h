// A report as an Excel workbook.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <string>

namespace pelmora::report {

// The bytes of a workbook with one sheet for each table of report_tables.h, column names in its
// first row. Numbers are numbers, texts are never formulas.
//
// Errors: std::runtime_error if the workbook cannot be made.
[[nodiscard]] std::string xlsxReport(const Report& report);

}  // namespace pelmora::report
