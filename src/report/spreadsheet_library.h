// The library that writes workbooks. It is loaded when the first one is written, because it needs a
// library of cryptography that takes longer to load than most commands take to run.
// SPDX-License-Identifier: MIT
#pragma once

#include <xlsxwriter.h>

namespace pelmora::report {

// The functions that we need, under their own names.
struct SpreadsheetLibrary {
  decltype(&::lxw_strerror) lxw_strerror;
  decltype(&::workbook_new) workbook_new;
  decltype(&::workbook_close) workbook_close;
  decltype(&::lxw_workbook_free) lxw_workbook_free;
  decltype(&::workbook_set_properties) workbook_set_properties;
  decltype(&::workbook_add_format) workbook_add_format;
  decltype(&::workbook_add_worksheet) workbook_add_worksheet;
  decltype(&::format_set_bold) format_set_bold;
  decltype(&::format_set_num_format) format_set_num_format;
  decltype(&::worksheet_write_number) worksheet_write_number;
  decltype(&::worksheet_write_string) worksheet_write_string;
  decltype(&::worksheet_set_column) worksheet_set_column;
  decltype(&::worksheet_freeze_panes) worksheet_freeze_panes;
  decltype(&::worksheet_autofilter) worksheet_autofilter;
};

// Errors: Unusable if it cannot be loaded. Safe from several threads.
[[nodiscard]] const SpreadsheetLibrary& spreadsheetLibrary();

}  // namespace pelmora::report
