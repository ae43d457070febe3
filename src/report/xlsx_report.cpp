// SPDX-License-Identifier: MIT
#include "report/xlsx_report.h"

#include "report/report_tables.h"
#include "report/spreadsheet_library.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace pelmora::report {
namespace {

constexpr double narrowest = 8, widest = 48;  // characters

const SpreadsheetLibrary& library() { return spreadsheetLibrary(); }

void require(lxw_error error) {
  if (error != LXW_NO_ERROR)
    throw std::runtime_error(std::string("the workbook cannot be made: ") +
                             library().lxw_strerror(error));
}

// The library writes files alone: one of our own, gone with its object.
class ScratchFile {
 public:
  ScratchFile() : path_((std::filesystem::temp_directory_path() / "pelmora-XXXXXX").string()) {
    const int descriptor = mkstemp(path_.data());
    if (descriptor < 0)
      throw std::runtime_error("the workbook cannot be made: no temporary file; check TMPDIR");
    close(descriptor);
  }
  ~ScratchFile() { std::remove(path_.c_str()); }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] std::string content() const {
    std::ifstream file(path_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

 private:
  std::string path_;
};

// Of 2026-11-21T13:40:00Z; 0, which is now, where the text is another.
std::time_t timeOf(const std::string& text) {
  std::tm utc{};
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  stream >> std::get_time(&utc, "%Y-%m-%dT%H:%M:%SZ");
  return stream.fail() ? 0 : timegm(&utc);
}

struct CloseWorkbook {
  void operator()(lxw_workbook* book) const { library().workbook_close(book); }
};

// A cell's text must be XML: control characters but line breaks and tabs are not.
std::string xmlText(const std::string& text) {
  std::string result;
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    result += (code < 32 && c != '\n' && c != '\t') || code == 127 ? '?' : c;
  }
  return result;
}

// Returns how many characters the cell takes.
double write(lxw_worksheet* sheet, lxw_row_t row, lxw_col_t column, const Value& value) {
  constexpr double digits = 14;
  if (const auto* whole = std::get_if<std::int64_t>(&value)) {
    require(
        library().worksheet_write_number(sheet, row, column, static_cast<double>(*whole), nullptr));
    return narrowest;
  }
  if (const auto* real = std::get_if<double>(&value)) {
    require(library().worksheet_write_number(sheet, row, column, *real, nullptr));
    return digits;
  }
  const auto* text = std::get_if<std::string>(&value);
  if (text == nullptr) return 0;
  require(library().worksheet_write_string(sheet, row, column, xmlText(*text).c_str(), nullptr));
  return static_cast<double>(text->size());
}

void addSheet(lxw_workbook* book, lxw_format* bold, const ReportTable& table) {
  lxw_worksheet* sheet = library().workbook_add_worksheet(book, table.name.c_str());
  if (sheet == nullptr)
    throw std::runtime_error("the workbook cannot be made: no sheet '" + table.name + "'");
  for (std::size_t c = 0; c < table.columns.size(); ++c) {
    const auto column = static_cast<lxw_col_t>(c);
    require(library().worksheet_write_string(sheet, 0, column, table.columns[c].c_str(), bold));
    double width = std::max(narrowest, static_cast<double>(table.columns[c].size()) + 2);
    for (std::size_t r = 0; r < table.rows.size(); ++r)
      width = std::max(width,
                       write(sheet, static_cast<lxw_row_t>(r) + 1, column, table.rows[r][c]) + 2);
    require(
        library().worksheet_set_column(sheet, column, column, std::min(width, widest), nullptr));
  }
  library().worksheet_freeze_panes(sheet, 1, 0);
  if (!table.rows.empty()) {
    library().worksheet_autofilter(sheet, 0, 0, static_cast<lxw_row_t>(table.rows.size()),
                                   static_cast<lxw_col_t>(table.columns.size()) - 1);
  }
}

}  // namespace

std::string xlsxReport(const Report& report) {
  const ScratchFile file;
  std::unique_ptr<lxw_workbook, CloseWorkbook> book(library().workbook_new(file.path().c_str()));
  if (!book) throw std::runtime_error("the workbook cannot be made: no memory");
  lxw_doc_properties properties{};
  properties.created = timeOf(report.createdAt);
  require(library().workbook_set_properties(book.get(), &properties));
  lxw_format* bold = library().workbook_add_format(book.get());
  library().format_set_bold(bold);
  for (const ReportTable& table : reportTables(report)) addSheet(book.get(), bold, table);
  require(library().workbook_close(book.release()));
  return file.content();
}

}  // namespace pelmora::report
