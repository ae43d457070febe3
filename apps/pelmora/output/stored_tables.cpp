// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/stored_tables.h"

#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/output/run_table.h"
#include "apps/pelmora/output/text_table.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace pelmora::cli {
namespace {

using Align = TextTable::Align;
using nlohmann::json;

struct Calibration {
  std::string serialNumber, adjusted;
  std::int16_t reCalID = 0;
  std::vector<std::string> series;
};

std::vector<Calibration> calibrations(CurveSession& session) {
  std::vector<Calibration> list;
  for (const std::string& serialNumber : session.serialNumbers()) {
    for (const MeterInfo& meter : session.calibrationsOf(serialNumber)) {
      list.push_back(
          {serialNumber, meter.SerialNumberAdjusted, meter.ReCalID, session.seriesNames(meter)});
    }
  }
  return list;
}

// The chosen equation as the stored report names it; empty where it names none or several.
std::string equationOf(const std::string& report) {
  constexpr std::string_view label = "\nDescription: ";
  const std::size_t at = report.find(label);
  if (at == std::string::npos || report.find(label, at + 1) != std::string::npos) return {};
  const std::size_t begin = at + label.size();
  return report.substr(begin, report.find_first_of("\r\n", begin) - begin);
}

std::string countText(std::size_t count) { return count == 0 ? "-" : std::to_string(count); }

std::string rangeText(const PointArray& points) {
  if (points.empty()) return "-";
  const auto [lowest, highest] =
      std::minmax_element(points.column(0).begin(), points.column(0).end());
  return significantText(*lowest, 4) + " - " + significantText(*highest, 4);
}

json rawCounts(const SeriesInfo& series) {
  json counts = json::array();
  for (const RawSlot& slot : series.Raw) counts.push_back(slot.Points.size());
  return counts;
}

std::string headText(const MeterInfo& meter) {
  const bool isAdjusted =
      !meter.SerialNumberAdjusted.empty() && meter.SerialNumberAdjusted != meter.SerialNumber;
  return "Meter " + meter.SerialNumber +
         (isAdjusted ? " (adjusted " + meter.SerialNumberAdjusted + ")" : "") + ", calibration " +
         std::to_string(meter.ReCalID);
}

}  // namespace

std::string metersText(CurveSession& session) {
  const auto list = calibrations(session);
  if (list.empty()) return "No meter is stored yet.\n";
  TextTable table({{"Meter", Align::left},
                   {"Adjusted", Align::left},
                   {"Calibration", Align::right},
                   {"Series", Align::left}});
  for (const Calibration& calibration : list) {
    std::string names;
    for (const std::string& name : calibration.series) names += (names.empty() ? "" : ", ") + name;
    table.addRow({calibration.serialNumber, calibration.adjusted,
                  std::to_string(calibration.reCalID), names.empty() ? "-" : names});
  }
  return table.text();
}

std::string metersJson(CurveSession& session) {
  json meters = json::array();
  for (const Calibration& calibration : calibrations(session)) {
    meters.push_back({{"serialNumber", calibration.serialNumber},
                      {"serialNumberAdjusted", calibration.adjusted},
                      {"calibration", calibration.reCalID},
                      {"series", calibration.series}});
  }
  return jsonText({{"database", session.path()}, {"meters", meters}});
}

std::string meterContentsText(CurveSession& session, const MeterInfo& meter) {
  std::string text = wrapped(headText(meter) + ", in " + session.path(), 0);
  std::vector<calibration::Run> runs;
  for (const CalSetupInfo& setup : session.setups(meter)) {
    runs.push_back({setup.ID, setup.Stand, setup.Position, setup.Operator, setup.Fluid,
                    setup.DateTaken, setup.JobRecordIDs, setup.Points});
  }
  if (!runs.empty()) text += "\n" + runTable(runs);
  const auto list = session.requireAllSeries(meter, {});
  if (list.empty()) return text + "\nNo series is stored for it yet.\n";
  TextTable table({{"Series", Align::left},
                   {"Raw 1", Align::right},
                   {"2", Align::right},
                   {"3", Align::right},
                   {"4", Align::right},
                   {"Merged", Align::right},
                   {"Curve", Align::right},
                   {"Roshko", Align::left},
                   {"Equation", Align::left}});
  for (const SeriesInfo& series : list) {
    std::vector<std::string> row{series.SeriesName};
    for (const RawSlot& slot : series.Raw) row.push_back(countText(slot.Points.size()));
    const std::string equation = equationOf(series.Summary);
    row.insert(row.end(), {countText(series.Merged.size()), countText(series.Fitted.size()),
                           rangeText(series.Fitted), equation.empty() ? "-" : equation});
    table.addRow(row);
  }
  return text + "\n" + table.text();
}

std::string meterContentsJson(CurveSession& session, const MeterInfo& meter) {
  json series = json::array();
  for (const SeriesInfo& stored : session.requireAllSeries(meter, {})) {
    const std::string equation = equationOf(stored.Summary);
    series.push_back({{"name", stored.SeriesName},
                      {"seriesId", stored.SeriesID},
                      {"rawPoints", rawCounts(stored)},
                      {"mergedPoints", stored.Merged.size()},
                      {"curvePoints", stored.Fitted.size()},
                      {"equation", equation.empty() ? json() : json(equation)}});
  }
  return jsonText({{"database", session.path()},
                   {"meter", meterJson(meter)},
                   {"setups", setupsJson(session.setups(meter))},
                   {"series", series}});
}

std::string seriesContentsText(const MeterInfo& stored) {
  const SeriesInfo& series = stored.Series.front();
  std::string counts;
  for (std::size_t part = 0; part < series.Raw.size(); ++part) {
    counts += (part == 0 ? "" : " + ") + std::to_string(series.Raw[part].Points.size());
  }
  std::string text = wrapped(headText(stored) + ", series '" + series.SeriesName + "': " + counts +
                                 " raw points, " + std::to_string(series.Merged.size()) +
                                 " merged, " + std::to_string(series.Fitted.size()) + " fitted",
                             0);
  if (series.Fitted.empty()) text += "No curve is stored for it yet: fit it with 'pelmora fit'.\n";
  if (!series.Fitted.empty()) {
    TextTable table({{"", Align::right}, {"Roshko", Align::right}, {"Strouhal", Align::right}});
    for (std::size_t i = 0; i < series.Fitted.size(); ++i) {
      table.addRow({std::to_string(i + 1), alignedText(series.Fitted(i, 0), 7),
                    alignedText(series.Fitted(i, 1), 7)});
    }
    text += "\n" + table.text();
  }
  if (series.Summary.empty()) return text;
  std::string report = series.Summary;
  std::erase(report, '\r');
  return text + "\nReport\n------\n" + report + (report.ends_with('\n') ? "" : "\n");
}

std::string seriesContentsJson(const MeterInfo& stored) {
  const SeriesInfo& series = stored.Series.front();
  json raw = json::array();
  for (const RawSlot& slot : series.Raw) raw.push_back(pointsJson(slot.Points));
  const std::string equation = equationOf(series.Summary);
  return jsonText({{"meter", meterJson(stored)},
                   {"series", series.SeriesName},
                   {"seriesId", series.SeriesID},
                   {"raw", raw},
                   {"merged", pointsJson(series.Merged)},
                   {"curve", pointsJson(series.Fitted)},
                   {"equation", equation.empty() ? json() : json(equation)},
                   {"report", series.Summary}});
}

}  // namespace pelmora::cli
