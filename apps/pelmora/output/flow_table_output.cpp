// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/flow_table_output.h"

#include "apps/pelmora/output/text_table.h"
#include "report/json_null.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

namespace pelmora::cli {
namespace {

using calibration::FlowComputerTable;
using calibration::ReadAs;
using calibration::TableRow;

const char* readingText(ReadAs reading) {
  if (reading == ReadAs::log) return "linearly in the logarithm";
  return reading == ReadAs::cubic ? "by the cubic through four points in the logarithm"
                                  : "linearly";
}

std::string withUnit(const std::string& name, const std::string& unit) {
  return unit.empty() ? name : name + " (" + unit + ")";
}

}  // namespace

report::ReportTable flowTable(const FlowComputerTable& table) {
  report::ReportTable made{
      "table",
      {withUnit(table.xName, table.xUnit), withUnit(table.yName, table.yUnit), "U (%)"},
      {}};
  for (const TableRow& row : table.rows) {
    std::vector<Value>& cells = made.rows.emplace_back(3);
    cells[0] = row.x;
    cells[1] = row.y;
    if (row.expandedPercent) cells[2] = *row.expandedPercent;
  }
  return made;
}

nlohmann::json flowTableJson(const FlowComputerTable& table, const std::string& location,
                             const calibration::StoredSeries& series) {
  nlohmann::json value{{"database", location},
                       {"meter", report::meterJson(series.meter)},
                       {"series", series.name},
                       {"curveAge", calibration::curveAgeKey(series.age)},
                       {"for", calibration::tableFormKey(table.options.form)},
                       {"read", calibration::tableReadingKey(table.options.reading)},
                       {"x", {{"name", table.xName}, {"unit", table.xUnit}}},
                       {"y", {{"name", table.yName}, {"unit", table.yUnit}}},
                       {"readingErrorPercent", table.readingErrorPercent},
                       {"readingErrorAt", table.readingErrorAt},
                       {"expandedUncertaintyPercent", report::orNull(table.expandedPercent)},
                       {"coverageFactor", report::orNull(table.coverageFactor)},
                       {"probability", report::orNull(table.probability)},
                       {"viscosity", report::orNull(table.options.viscosity)},
                       {"temperatureC", table.options.celsius},
                       {"values", nlohmann::json::array()},
                       {"expandedPercents", nlohmann::json::array()}};
  for (const TableRow& row : table.rows) {
    value["values"].push_back({row.x, row.y});
    value["expandedPercents"].push_back(report::orNull(row.expandedPercent));
  }
  return value;
}

std::string flowTableText(const FlowComputerTable& table) {
  std::string text = counted(table.rows.size(), "point") + ", to be read " +
                     readingText(table.options.reading) + ": the reading error is at most " +
                     significantText(table.readingErrorPercent, 2) + " %, at " + table.xName + " " +
                     significantText(table.readingErrorAt, 5) + ". ";
  if (!table.expandedPercent)
    return wrapped(text + "The uncertainty of the curve is not known; fit the series again.", 0);
  text += "U is at most " + significantText(*table.expandedPercent, 2) +
          " % (k = " + fixedText(*table.coverageFactor, 2) + ") and contains the reading error";
  text += table.hasStand ? ", the curve and what the stand states."
                         : " and the scatter of the points alone: no uncertainty of the stand is "
                           "stored with the calibration.";
  return wrapped(text, 0);
}

}  // namespace pelmora::cli
