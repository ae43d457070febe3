// SPDX-License-Identifier: MIT
#include "report/csv_report.h"

#include "base/suggestion.h"
#include "base/text_flaw.h"
#include "report/markup.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <vector>

namespace pelmora::report {
namespace {

std::string quoted(const std::string& text, char separator) {
  if (text.find_first_of("\"\r\n") == std::string::npos &&
      text.find(separator) == std::string::npos)
    return text;
  std::string result = "\"";
  for (const char c : text) result += c == '"' ? std::string("\"\"") : std::string(1, c);
  return result + "\"";
}

}  // namespace

std::string csvCell(const Value& value, const CsvForm& form) {
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return std::to_string(*whole);
  if (const auto* real = std::get_if<double>(&value)) {
    std::string number = exactNumber(*real);
    std::ranges::replace(number, '.', form.decimal);
    return number;
  }
  const auto* text = std::get_if<std::string>(&value);
  if (text == nullptr) return {};
  const std::size_t first = text->find_first_not_of(" \t\r\n");
  const bool isFormula = first != std::string::npos &&
                         std::string_view("=+-@").find((*text)[first]) != std::string_view::npos;
  return quoted((isFormula ? "'" : "") + *text, form.separator);
}

std::string csvTable(const ReportTable& table, const CsvForm& form, bool isNamed,
                     const std::function<void()>& goOn) {
  const auto line = [&](const std::string& name, const auto& cells) {
    std::string text = isNamed ? name : "";
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (i > 0 || isNamed) text += form.separator;
      text += csvCell(Value(cells[i]), form);
    }
    return text + "\n";
  };
  std::string csv = line("table", table.columns);
  for (const auto& row : table.rows) {
    if (goOn) goOn();
    csv += line(table.name, row);
  }
  return csv;
}

std::string csvReport(const Report& report, const std::string& wanted) {
  std::string csv;
  std::vector<std::string> names;
  const auto goOn = [&report] { report.requireGoOn(); };
  for (const ReportTable& table : reportTables(report)) {
    if (table.name == wanted) return csvTable(table, {}, false, goOn);
    names.push_back(table.name);
    if (table.rows.empty()) continue;
    csv += (csv.empty() ? "" : "\n") + csvTable(table, {}, true, goOn);
  }
  if (wanted.empty()) return csv;
  throw calibration::BadData(
      {"a report has no table '" + shortened(wanted) + "'", "", suggestion(wanted, names)});
}

}  // namespace pelmora::report
