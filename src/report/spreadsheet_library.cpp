// SPDX-License-Identifier: MIT
#include "report/spreadsheet_library.h"

#include "loading/loaded_library.h"

namespace pelmora::report {
namespace {

SpreadsheetLibrary load() {
  const LoadedLibrary library(PELMORA_XLSXWRITER, "libxlsxwriter", "the workbook cannot be made");
  SpreadsheetLibrary found{};
  library.find("lxw_strerror", found.lxw_strerror);
  library.find("workbook_new", found.workbook_new);
  library.find("workbook_close", found.workbook_close);
  library.find("lxw_workbook_free", found.lxw_workbook_free);
  library.find("workbook_set_properties", found.workbook_set_properties);
  library.find("workbook_add_format", found.workbook_add_format);
  library.find("workbook_add_worksheet", found.workbook_add_worksheet);
  library.find("format_set_bold", found.format_set_bold);
  library.find("format_set_num_format", found.format_set_num_format);
  library.find("worksheet_write_number", found.worksheet_write_number);
  library.find("worksheet_write_string", found.worksheet_write_string);
  library.find("worksheet_set_column", found.worksheet_set_column);
  library.find("worksheet_freeze_panes", found.worksheet_freeze_panes);
  library.find("worksheet_autofilter", found.worksheet_autofilter);
  return found;
}

}  // namespace

const SpreadsheetLibrary& spreadsheetLibrary() {
  static const SpreadsheetLibrary library = load();
  return library;
}

}  // namespace pelmora::report
