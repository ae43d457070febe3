// A report as CSV.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_tables.h"

#include <functional>
#include <string>

namespace pelmora::report {

// How a CSV file is written.
struct CsvForm {
  char separator = ',', decimal = '.';
};

// One cell in the form that csvReport() describes, with the signs of `form`; empty for null.
[[nodiscard]] std::string csvCell(const Value& value, const CsvForm& form = {});

// A header line and the rows; with `isNamed`, the table's name in the first column. goOn: called
// for each row; what it throws ends the work.
[[nodiscard]] std::string csvTable(const ReportTable& table, const CsvForm& form = {},
                                   bool isNamed = false, const std::function<void()>& goOn = {});

// The tables of report_tables.h that have rows, one below the other with an empty line between
// them: each with its own header line, and the table's name in the first column. `wanted`: only the
// table of this name, without that column. Comma, decimal point, UTF-8, lines ended by LF, quotes
// where needed, numbers in their shortest exact form. A text that begins with = + - @, even
// after blanks, gets an apostrophe in front, so that no spreadsheet takes it for a formula.
//
// Errors: BadData for an unknown table.
[[nodiscard]] std::string csvReport(const Report& report, const std::string& wanted = {});

}  // namespace pelmora::report
