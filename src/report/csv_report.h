// A report as CSV.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <string>

namespace pelmora::report {

// One cell in the form that csvReport() describes; empty for null.
[[nodiscard]] std::string csvCell(const Value& value);

// The tables of report_tables.h that have rows, one below the other with an empty line between
// them: each with its own header line, and the table's name in the first column. `wanted`: only the
// table of this name, without that column. Comma, decimal point, UTF-8, lines ended by LF, quotes
// where needed, numbers in their shortest exact form. A text that begins with = + - @, even
// after blanks, gets an apostrophe in front, so that no spreadsheet takes it for a formula.
//
// Errors: BadData for an unknown table.
[[nodiscard]] std::string csvReport(const Report& report, const std::string& wanted = {});

}  // namespace pelmora::report
