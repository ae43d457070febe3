// SPDX-License-Identifier: MIT
#include "report/csv_report.h"

#include "report/markup.h"
#include "report/report_tables.h"

#include <algorithm>

namespace pelmora::report {
namespace {

std::string quoted(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string result = "\"";
  for (const char c : text) result += c == '"' ? std::string("\"\"") : std::string(1, c);
  return result + "\"";
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

std::string csvReport(const Report& report) {
  const auto tables = reportTables(report);
  std::vector<std::string> columns;
  for (const ReportTable& table : tables) {
    for (const std::string& column : table.columns) {
      if (std::find(columns.begin(), columns.end(), column) == columns.end())
        columns.push_back(column);
    }
  }
  std::string csv = "table";
  for (const std::string& column : columns) csv += "," + column;
  csv += "\n";
  for (const ReportTable& table : tables) {
    for (const auto& row : table.rows) {
      csv += table.name;
      for (const std::string& column : columns) {
        const auto found = std::find(table.columns.begin(), table.columns.end(), column);
        csv += ",";
        if (found != table.columns.end())
          csv += csvCell(row[static_cast<std::size_t>(found - table.columns.begin())]);
      }
      csv += "\n";
    }
  }
  return csv;
}

}  // namespace pelmora::report
