// SPDX-License-Identifier: MIT
#include "report/xlsx_report.h"

#include "base/time_text.h"
#include "report/scratch_folder.h"
#include "report/spreadsheet_library.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <future>
#include <iomanip>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <stop_token>
#include <thread>
#include <utility>

namespace pelmora::report {
namespace {

constexpr double narrowest = 8, widest = 48;  // characters
constexpr const char* workbookName = "report.xlsx";
constexpr std::chrono::milliseconds betweenWorkbookLooks{10};

const SpreadsheetLibrary& library() { return spreadsheetLibrary(); }

[[noreturn]] void fail(const std::string& why) {
  throw std::runtime_error("the workbook cannot be made: " + why);
}

void require(lxw_error error) {
  if (error != LXW_NO_ERROR) fail(library().lxw_strerror(error));
}

// The time of "2026-11-21T13:40:00Z"; 0, which the library takes for now, of any other text.
std::time_t timeOf(const std::string& text) {
  std::tm utc{};
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  stream >> std::get_time(&utc, "%Y-%m-%dT%H:%M:%SZ");
  return stream.fail() ? 0 : timegm(&utc);
}

// Of one that is not finished: closing would write the file.
struct FreeWorkbook {
  void operator()(lxw_workbook* book) const { library().lxw_workbook_free(book); }
};
using Workbook = std::unique_ptr<lxw_workbook, FreeWorkbook>;

// XML holds no control characters except line breaks and tabs.
std::string xmlText(const std::string& text) {
  std::string result;
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    result += (code < 32 && c != '\n' && c != '\t') || code == 127 ? '?' : c;
  }
  return result;
}

// How a column's numbers are shown; all of their digits stay in the cell.
std::string numberFormat(const std::string& column) {
  const auto endsWith = [&](std::string_view end) { return column.ends_with(end); };
  // Rounded to two digits already, whatever their size.
  if (column == "expandedUncertainty" || column == "expandedUncertaintyPercent" ||
      column == "lowestPercent" || column == "highestPercent" || column == "cmcPercent")
    return {};
  if (endsWith("CoverageFactor") || column == "coverageFactor") return "0.00";
  if (column == "probability") return "0.0000";
  if (endsWith("Percent")) return "0.000";
  if (column == "roshko" || endsWith("Roshko") || column == "min" || column == "max")
    return "0.0000";
  if (column == "strouhal" || column == "meanFactor") return "0.0000";
  if (endsWith("HalfWidth")) return "0.00000";
  if (column == "sigmas") return "0.0";
  if (column == "frequency") return "0.000";
  if (column == "flow" || endsWith("Flow")) return "0.00000";
  if (column == "temperature") return "0.00";
  if (column == "viscosity") return "0.0000";
  if (column == "r2" || column == "adjustedR2") return "0.000000";
  if (column == "aicc" || column == "bic" || column == "turndown") return "0.00";
  return {};
}

// Returns how many characters the cell takes.
double write(lxw_worksheet* sheet, lxw_row_t row, lxw_col_t column, const Value& value,
             lxw_format* format) {
  constexpr double digits = 14;
  if (const auto* whole = std::get_if<std::int64_t>(&value)) {
    require(
        library().worksheet_write_number(sheet, row, column, static_cast<double>(*whole), nullptr));
    return narrowest;
  }
  if (const auto* real = std::get_if<double>(&value)) {
    require(library().worksheet_write_number(sheet, row, column, *real, format));
    return digits;
  }
  const auto* text = std::get_if<std::string>(&value);
  if (text == nullptr) return 0;
  require(library().worksheet_write_string(sheet, row, column, xmlText(*text).c_str(), nullptr));
  return static_cast<double>(text->size());
}

// One format for each way of showing numbers.
class NumberFormats {
 public:
  explicit NumberFormats(lxw_workbook* book) : book_(book) {}
  // Null for an empty one: the spreadsheet's general format.
  lxw_format* of(const std::string& text) {
    if (text.empty()) return nullptr;
    lxw_format*& format = known_[text];
    if (format == nullptr) {
      format = library().workbook_add_format(book_);
      library().format_set_num_format(format, text.c_str());
    }
    return format;
  }

 private:
  lxw_workbook* book_;
  std::map<std::string, lxw_format*> known_;
};

void addSheet(lxw_workbook* book, lxw_format* bold, NumberFormats& formats,
              const ReportTable& table, const std::stop_token& stop) {
  lxw_worksheet* sheet = library().workbook_add_worksheet(book, table.name.c_str());
  if (sheet == nullptr) fail("no sheet '" + table.name + "'");
  for (std::size_t c = 0; c < table.columns.size(); ++c) {
    const auto column = static_cast<lxw_col_t>(c);
    require(library().worksheet_write_string(sheet, 0, column, table.columns[c].c_str(), bold));
    lxw_format* format = formats.of(numberFormat(table.columns[c]));
    double width = std::max(narrowest, static_cast<double>(table.columns[c].size()) + 2);
    for (std::size_t r = 0; r < table.rows.size(); ++r) {
      requireGoOn(stop);
      width = std::max(
          width, write(sheet, static_cast<lxw_row_t>(r) + 1, column, table.rows[r][c], format) + 2);
    }
    require(
        library().worksheet_set_column(sheet, column, column, std::min(width, widest), nullptr));
  }
  library().worksheet_freeze_panes(sheet, 1, 0);
  if (!table.rows.empty()) {
    library().worksheet_autofilter(sheet, 0, 0, static_cast<lxw_row_t>(table.rows.size()),
                                   static_cast<lxw_col_t>(table.columns.size()) - 1);
  }
}

// Writes the file, which takes the library a second for many points. It cannot be asked to stop:
// on a stop, it goes on in a thread that nobody waits for, which removes the file afterwards.
std::string written(Workbook book, const std::shared_ptr<const ScratchFolder>& folder,
                    const std::stop_token& stop) {
  if (!stop.stop_possible()) {
    require(library().workbook_close(book.release()));
    return folder->read(workbookName);
  }
  std::promise<lxw_error> promise;
  std::future<lxw_error> closed = promise.get_future();
  std::thread([book = book.release(), folder, promise = std::move(promise)]() mutable {
    promise.set_value(library().workbook_close(book));
  }).detach();
  while (closed.wait_for(betweenWorkbookLooks) != std::future_status::ready) requireGoOn(stop);
  require(closed.get());
  return folder->read(workbookName);
}

std::string workbookOf(const std::vector<ReportTable>& tables, std::time_t created,
                       const std::stop_token& stop) {
  const auto folder = std::make_shared<const ScratchFolder>();  // the library writes only files
  Workbook book(library().workbook_new(folder->file(workbookName).c_str()));
  if (!book) fail("no memory");
  lxw_doc_properties properties{};
  properties.created = created;
  require(library().workbook_set_properties(book.get(), &properties));
  lxw_format* bold = library().workbook_add_format(book.get());
  library().format_set_bold(bold);
  NumberFormats formats(book.get());
  for (const ReportTable& table : tables) addSheet(book.get(), bold, formats, table, stop);
  return written(std::move(book), folder, stop);
}

}  // namespace

std::string xlsxReport(const Report& report) {
  return workbookOf(reportTables(report), timeOf(report.createdAt), report.stop);
}

std::string xlsxTable(const ReportTable& table) {
  return workbookOf({table}, timeOf(utcText()), {});
}

}  // namespace pelmora::report
