// A report as CSV.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <string>

namespace pelmora::report {

// One cell in the form that csvReport() describes; empty for null.
[[nodiscard]] std::string csvCell(const Value& value);

// The tables of report_tables.h below one header line: first the name of the row's table, then
// every column of any table; cells that a table has not are empty. Comma, decimal point, UTF-8,
// lines ended by LF, quotes where needed, numbers in their shortest exact form. A text that begins
// with = + - @, behind blanks too, gets an apostrophe in front, so that no spreadsheet takes it for
// a formula.
[[nodiscard]] std::string csvReport(const Report& report);

}  // namespace pelmora::report
