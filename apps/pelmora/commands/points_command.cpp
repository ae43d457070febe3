// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/point_output.h"
#include "apps/pelmora/output/shown_units.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/suggested_command.h"
#include "apps/pelmora/output/suggested_exclusion.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/session.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <memory>

namespace pelmora::cli {
namespace {

struct PointsRequest {
  DatabaseOption curves;
  std::string meter, series;
  std::vector<std::string> units;
  std::int16_t reCalID = -1;
  bool asJson = false;
};

// The points that contradict the others, with what excludes them.
std::string suspectLines(const PointsRequest& request, const std::string& series,
                         const std::vector<calibration::RawPoint>& points) {
  std::string text;
  std::vector<SuspectPoint> suspects;
  for (const calibration::RawPoint& point : points) {
    if (!point.isDistrusted || !point.sigmas) continue;
    text +=
        wrapped("Part " + std::to_string(point.part) + ", point " + std::to_string(point.number) +
                    " at Roshko " + significantText(point.roshko, 6) + " lies " +
                    fixedText(std::fabs(*point.sigmas), 1) + " sigmas off its neighbours" +
                    (point.state == calibration::PointState::distrusted
                         ? "; the stored curve was fitted without it."
                         : "."),
                0);
    suspects.push_back({point.part, point.number, *point.sigmas});
  }
  if (text.empty()) return text;
  if (suspects.size() > mostSuggestedPoints)
    return "\n" + text + wrapped(manyPointsAdvice() + ".", 0);
  text = "\n" + text + "If you know why, leave them out:\n";
  for (const std::string& command :
       exclusionCommands({request.curves.path, request.meter, request.reCalID, series}, suspects))
    text += "  " + command + "\n";
  return text;
}

std::string formerLines(const calibration::StoredSeries& stored) {
  std::string text;
  for (const calibration::ExcludedPoint& point : stored.excludedBefore) {
    text += wrapped("Part " + std::to_string(point.part) + ", point " +
                        std::to_string(point.number) + " was excluded (" + point.exclusion.reason +
                        "), but another program has stored the part again since.",
                    0);
  }
  return text;
}

void listPoints(const PointsRequest& request) {
  Session session(request.curves, calibration::Mode::read);
  calibration::Database& lab = session.database();
  const calibration::Meter meter = lab.meter(request.meter, request.reCalID);
  calibration::StoredSeries stored = lab.series(meter, request.series);
  auto points = lab.points(stored, session.observer());
  const calibration::CurveAge age = lab.curveAge(stored);
  const ShownUnits units = shownUnits(lab, stored, request.units);
  convert(stored, units);
  convert(points, units);
  if (request.asJson) {
    nlohmann::json list = nlohmann::json::array();
    for (const auto& point : points) list.push_back(report::rawPointJson(point));
    nlohmann::json former = nlohmann::json::array();
    for (const auto& point : stored.excludedBefore) {
      former.push_back(
          droppedJson({{stored.name, point.part, point.number, point.roshko, point.strouhal},
                       point.job,
                       point.exclusion.reason,
                       "another program has stored the part again"}));
    }
    return printData(report::jsonText({{"database", session.path()},
                                       {"meter", report::meterJson(meter)},
                                       {"series", stored.name},
                                       {"curve", calibration::curveAgeKey(age)},
                                       {"units", unitsJson(units)},
                                       {"points", list},
                                       {"excludedBefore", former}}));
  }
  std::string text =
      wrapped("Series '" + stored.name + "' of meter " + meter.serial + ", calibration " +
                  std::to_string(meter.calibration) + ": " + pointCounts(points),
              0);
  if (points.empty()) return printData(text);
  text += unitsLine(units) + "\n" + pointsTable(points);
  const std::string excluded = exclusionLines(points) + formerLines(stored);
  if (!excluded.empty()) text += "\n" + excluded;
  text += suspectLines(request, stored.name, points);
  if (age == calibration::CurveAge::outdated) {
    std::vector<std::string> words{"refit", request.curves.path};
    addSeriesWords(words, request.meter, request.reCalID, stored.name);
    text += "\n" + wrapped("The stored curve is older than these points. Fit it again:", 0) + "  " +
            suggestedCommand(words) + "\n";
  }
  printData(text);
}

}  // namespace

void addPointsCommand(Program& program) {
  Command command = program.add(
      "points",
      "List the raw points of a series: how far each lies off the stored curve and, in standard "
      "deviations (sigmas), off the smooth curve through all others; which points the merge has "
      "cut, which the stored curve was fitted without because the others contradict them, and "
      "which were excluded, by whom and why. Point numbers stay the same while points "
      "are excluded and included.");
  const auto request = std::make_shared<PointsRequest>();
  addDatabase(command, request->curves);
  addMeter(command, request->meter, true);
  addSeries(command, request->series, true);
  addCalibration(command, request->reCalID);
  addUnits(command, request->units);
  addJson(command, request->asJson);
  command.onRun([request] { listPoints(*request); });
}

}  // namespace pelmora::cli
