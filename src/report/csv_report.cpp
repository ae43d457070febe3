// SPDX-License-Identifier: MIT
#include "report/csv_report.h"

#include "base/suggestion.h"
#include "base/text_flaw.h"
#include "report/markup.h"
#include "report/report_tables.h"

#include <pelmora/calibration/failure.h>

#include <vector>

namespace pelmora::report {
namespace {

std::string quoted(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string result = "\"";
  for (const char c : text) result += c == '"' ? std::string("\"\"") : std::string(1, c);
  return result + "\"";
}

std::string csvTable(const ReportTable& table, bool isNamed) {
  std::string csv = isNamed ? "table" : "";
  for (const std::string& column : table.columns) csv += (csv.empty() ? "" : ",") + column;
  csv += "\n";
  for (const auto& row : table.rows) {
    std::string line = isNamed ? table.name : "";
    for (std::size_t i = 0; i < row.size(); ++i)
      line += (i == 0 && !isNamed ? "" : ",") + csvCell(row[i]);
    csv += line + "\n";
  }
  return csv;
}

}  // namespace

std::string csvCell(const Value& value) {
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return std::to_string(*whole);
  if (const auto* real = std::get_if<double>(&value)) return exactNumber(*real);
  const auto* text = std::get_if<std::string>(&value);
  if (text == nullptr) return {};
  const std::size_t first = text->find_first_not_of(" \t\r\n");
  const bool isFormula = first != std::string::npos &&
                         std::string_view("=+-@").find((*text)[first]) != std::string_view::npos;
  return quoted((isFormula ? "'" : "") + *text);
}

std::string csvReport(const Report& report, const std::string& wanted) {
  std::string csv;
  std::vector<std::string> names;
  for (const ReportTable& table : reportTables(report)) {
    if (table.name == wanted) return csvTable(table, false);
    names.push_back(table.name);
    if (table.rows.empty()) continue;
    csv += (csv.empty() ? "" : "\n") + csvTable(table, true);
  }
  if (wanted.empty()) return csv;
  throw calibration::BadData(
      {"a report has no table '" + shortened(wanted) + "'", "", suggestion(wanted, names)});
}

}  // namespace pelmora::report
