// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/point_output.h"

#include "apps/pelmora/output/text_table.h"
#include "report/json_null.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace pelmora::cli {
namespace {

using calibration::ChangedPoint;
using calibration::DroppedExclusion;
using calibration::PointState;
using calibration::RawPoint;
using Align = TextTable::Align;
using report::orNull;

std::string signedText(const std::optional<double>& value, int decimals) {
  if (!value) return "-";
  const std::string text = fixedText(*value, decimals);
  return *value > 0 ? "+" + text : text;
}

std::string stateText(const RawPoint& point) {
  std::string text = calibration::pointStateKey(point.state);
  if (point.exclusion) return text + ": " + point.exclusion->reason;
  if (point.cutPercent) text += ": " + signedText(point.cutPercent, 3) + " %";
  return point.isDistrusted && point.state != PointState::distrusted ? text + ", suspect" : text;
}

std::size_t count(const std::vector<RawPoint>& points, PointState state) {
  return static_cast<std::size_t>(std::ranges::count(points, state, &RawPoint::state));
}

std::string exclusionLine(int part, std::size_t number, const calibration::Exclusion& exclusion) {
  const std::string who = exclusion.userName.empty() ? "" : " by " + exclusion.userName;
  return wrapped("Part " + std::to_string(part) + ", point " + std::to_string(number) +
                     ": excluded" + who + " on " + exclusion.excludedAt + ": " + exclusion.reason,
                 0);
}

}  // namespace

std::string pointsTable(const std::vector<RawPoint>& points) {
  TextTable table({{"Part", Align::right},
                   {"#", Align::right},
                   {"Job", Align::right},
                   {"Roshko", Align::right},
                   {"Strouhal", Align::right},
                   {"Off %", Align::right},
                   {"Sigmas", Align::right},
                   {"State", Align::left}});
  for (const RawPoint& point : points) {
    table.addRow({std::to_string(point.part), std::to_string(point.number),
                  point.job.empty() ? "-" : point.job, alignedText(point.roshko, 7),
                  alignedText(point.strouhal, 7), signedText(point.residualPercent, 3),
                  signedText(point.sigmas, 1), stateText(point)});
  }
  return table.text();
}

std::string pointCounts(const std::vector<RawPoint>& points) {
  std::string text = std::to_string(points.size()) + (points.size() == 1 ? " point" : " points");
  const auto add = [&](PointState state, const std::string& words) {
    if (const std::size_t number = count(points, state); number > 0)
      text += ", " + std::to_string(number) + words;
  };
  add(PointState::excluded, " excluded");
  add(PointState::cut, " cut by the merge");
  add(PointState::distrusted, " distrusted");
  add(PointState::outsideRange, " beyond the stored curve");
  return text;
}

std::string pointsBySeries(const std::vector<PointsOfSeries>& all) {
  std::string text;
  for (const auto& [series, points] : all) {
    if (points == 0) continue;
    text +=
        (text.empty() ? counted(points, "point") : ", " + std::to_string(points)) + " of " + series;
  }
  return text;
}

std::string exclusionLines(const std::vector<RawPoint>& points) {
  std::string text;
  for (const RawPoint& point : points) {
    if (point.exclusion) text += exclusionLine(point.part, point.number, *point.exclusion);
  }
  return text;
}

std::string exclusionLines(const std::vector<calibration::ExcludedPoint>& points) {
  std::string text;
  for (const calibration::ExcludedPoint& point : points)
    text += exclusionLine(point.part, point.number, point.exclusion);
  return text;
}

nlohmann::json excludedPointJson(const calibration::ExcludedPoint& point) {
  return {{"part", point.part},
          {"number", point.number},
          {"job", orNull(point.job)},
          {"roshko", point.roshko},
          {"strouhal", point.strouhal},
          {"reason", point.exclusion.reason},
          {"user", point.exclusion.userName},
          {"excludedAt", point.exclusion.excludedAt}};
}

std::string changedPointsTable(const std::vector<ChangedPoint>& points) {
  TextTable table({{"Series", Align::left},
                   {"Part", Align::right},
                   {"#", Align::right},
                   {"Roshko", Align::right},
                   {"Strouhal", Align::right}});
  for (const ChangedPoint& point : points) {
    table.addRow({point.series, std::to_string(point.part), std::to_string(point.number),
                  alignedText(point.roshko, 7), alignedText(point.strouhal, 7)});
  }
  return table.text();
}

nlohmann::json changedPointJson(const ChangedPoint& point) {
  return {{"series", point.series},
          {"part", point.part},
          {"number", point.number},
          {"roshko", point.roshko},
          {"strouhal", point.strouhal}};
}

std::string droppedLines(const std::vector<DroppedExclusion>& dropped) {
  std::string text;
  for (const DroppedExclusion& end : dropped) {
    text += wrapped("No longer excluded: part " + std::to_string(end.point.part) + ", point " +
                        std::to_string(end.point.number) + " of series '" + end.point.series +
                        "' (" + end.reason + "): " + end.why,
                    0);
  }
  return text;
}

std::string exclusionText(std::size_t excluded, const std::vector<DroppedExclusion>& dropped) {
  if (excluded == 0) return droppedLines(dropped);
  return wrapped(std::to_string(excluded) +
                     (excluded == 1 ? " point stays excluded." : " points stay excluded."),
                 0) +
         droppedLines(dropped);
}

nlohmann::json droppedJson(const DroppedExclusion& dropped) {
  nlohmann::json value = changedPointJson(dropped.point);
  value["job"] = orNull(dropped.job);
  value["reason"] = dropped.reason;
  value["why"] = dropped.why;
  return value;
}

}  // namespace pelmora::cli
