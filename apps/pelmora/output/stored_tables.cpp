// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/stored_tables.h"

#include "apps/pelmora/output/point_output.h"
#include "apps/pelmora/output/run_table.h"
#include "apps/pelmora/output/text_table.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace pelmora::cli {
namespace {

using calibration::StoredSeries;
using nlohmann::json;

std::string pointsText(const PointArray& points) {
  return points.empty() ? "-" : std::to_string(points.size());
}

std::string rangeText(const PointArray& points) {
  if (points.empty()) return "-";
  const auto [lowest, highest] =
      std::minmax_element(points.column(0).begin(), points.column(0).end());
  return significantText(*lowest, 4) + " - " + significantText(*highest, 4);
}

json equationName(const StoredSeries& series) {
  return series.equation.empty() ? json() : json(series.equation);
}

std::string headText(const calibration::Meter& meter) {
  const bool isAdjusted = !meter.adjusted.empty() && meter.adjusted != meter.serial;
  return "Meter " + meter.serial + (isAdjusted ? " (adjusted " + meter.adjusted + ")" : "") +
         ", calibration " + std::to_string(meter.calibration);
}

std::string curveTable(const PointArray& curve) {
  TextTable table(
      {{"", TextAlign::right}, {"Roshko", TextAlign::right}, {"Strouhal", TextAlign::right}});
  for (std::size_t i = 0; i < curve.size(); ++i)
    table.addRow({std::to_string(i + 1), alignedText(curve(i, 0), 7), alignedText(curve(i, 1), 7)});
  return table.text();
}

// The counts alone: the reasons are printed by the command 'points'.
std::string excludedLine(const std::vector<StoredSeries>& all) {
  std::vector<PointsOfSeries> excluded;
  for (const StoredSeries& series : all) excluded.push_back({series.name, series.excluded.size()});
  const std::string points = pointsBySeries(excluded);
  return points.empty() ? "" : wrapped("Excluded: " + points + "; 'pelmora points' says why.", 0);
}

json excludedJson(const StoredSeries& series) {
  json list = json::array();
  for (const calibration::ExcludedPoint& point : series.excluded)
    list.push_back(excludedPointJson(point));
  return list;
}

}  // namespace

std::string calibrationText(const CalibrationContents& contents) {
  std::string text = wrapped(headText(contents.meter) + ", in " + contents.database, 0);
  if (!contents.runs.empty()) text += "\n" + runTable(contents.runs);
  if (contents.series.empty()) return text + "\nNo series is stored for it yet.\n";
  TextTable table({{"Series"},
                   {"Raw 1", TextAlign::right},
                   {"2", TextAlign::right},
                   {"3", TextAlign::right},
                   {"4", TextAlign::right},
                   {"Merged", TextAlign::right},
                   {"Curve", TextAlign::right},
                   {"Roshko"},
                   {"Equation"}});
  for (const StoredSeries& series : contents.series) {
    std::vector<std::string> row{series.name};
    for (const PointArray& part : series.raw) row.push_back(pointsText(part));
    row.insert(row.end(),
               {pointsText(series.merged), pointsText(series.curve), rangeText(series.curve),
                series.equation.empty() ? "-" : series.equation});
    table.addRow(std::move(row));
  }
  return text + "\n" + table.text() + excludedLine(contents.series);
}

json calibrationValue(const CalibrationContents& contents) {
  json list = json::array();
  for (const StoredSeries& series : contents.series) {
    json counts = json::array();
    for (const PointArray& part : series.raw) counts.push_back(part.size());
    list.push_back({{"name", series.name},
                    {"seriesId", series.id},
                    {"rawPoints", counts},
                    {"mergedPoints", series.merged.size()},
                    {"curvePoints", series.curve.size()},
                    {"excludedPoints", series.excluded.size()},
                    {"curveAge", calibration::curveAgeKey(series.age)},
                    {"equation", equationName(series)}});
  }
  return {{"database", contents.database},
          {"meter", report::meterJson(contents.meter)},
          {"setups", report::runsJson(contents.runs)},
          {"series", list}};
}

std::string calibrationJson(const CalibrationContents& contents) {
  return report::jsonText(calibrationValue(contents));
}

std::string seriesText(const StoredSeries& series, const ShownUnits& units) {
  std::string counts;
  for (const PointArray& part : series.raw)
    counts += (counts.empty() ? "" : " + ") + std::to_string(part.size());
  std::string text = wrapped(headText(series.meter) + ", series '" + series.name + "': " + counts +
                                 " raw points, " + std::to_string(series.merged.size()) +
                                 " merged, " + std::to_string(series.curve.size()) + " fitted",
                             0);
  text += unitsLine(units) + exclusionLines(series.excluded);
  text += series.curve.empty() ? "No curve is stored for it yet: fit it with 'pelmora fit'.\n"
                               : "\n" + curveTable(series.curve);
  if (series.report.empty()) return text;
  std::string report = series.report;
  std::erase(report, '\r');
  return text + "\nReport\n------\n" + report + (report.ends_with('\n') ? "" : "\n");
}

std::string seriesJson(const StoredSeries& series, const ShownUnits& units) {
  json raw = json::array();
  for (const PointArray& part : series.raw) raw.push_back(report::pointsJson(part));
  return report::jsonText({{"meter", report::meterJson(series.meter)},
                           {"series", series.name},
                           {"seriesId", series.id},
                           {"units", unitsJson(units)},
                           {"raw", raw},
                           {"excluded", excludedJson(series)},
                           {"merged", report::pointsJson(series.merged)},
                           {"curveAge", calibration::curveAgeKey(series.age)},
                           {"curve", report::pointsJson(series.curve)},
                           {"equation", equationName(series)},
                           {"report", series.report}});
}

}  // namespace pelmora::cli
