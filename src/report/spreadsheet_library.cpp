// SPDX-License-Identifier: MIT
#include "report/spreadsheet_library.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

namespace pelmora::report {
namespace {

[[noreturn]] void fail() {
  const char* why = dlerror();
  throw std::runtime_error(std::string("the workbook cannot be made: ") +
                           (why == nullptr ? PELMORA_XLSXWRITER " is not usable" : why) +
                           "; install libxlsxwriter, or write another kind of report");
}

template <class Function>
void find(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(dlsym(library, name));
  if (function == nullptr) fail();
}

SpreadsheetLibrary load() {
  // Never unloaded: it stays for the next workbook.
  void* const library = dlopen(PELMORA_XLSXWRITER, RTLD_LAZY | RTLD_LOCAL);
  if (library == nullptr) fail();
  SpreadsheetLibrary found{};
  find(library, "lxw_strerror", found.lxw_strerror);
  find(library, "workbook_new", found.workbook_new);
  find(library, "workbook_close", found.workbook_close);
  find(library, "workbook_set_properties", found.workbook_set_properties);
  find(library, "workbook_add_format", found.workbook_add_format);
  find(library, "workbook_add_worksheet", found.workbook_add_worksheet);
  find(library, "format_set_bold", found.format_set_bold);
  find(library, "worksheet_write_number", found.worksheet_write_number);
  find(library, "worksheet_write_string", found.worksheet_write_string);
  find(library, "worksheet_set_column", found.worksheet_set_column);
  find(library, "worksheet_freeze_panes", found.worksheet_freeze_panes);
  find(library, "worksheet_autofilter", found.worksheet_autofilter);
  return found;
}

}  // namespace

const SpreadsheetLibrary& spreadsheetLibrary() {
  static const SpreadsheetLibrary library = load();
  return library;
}

}  // namespace pelmora::report
