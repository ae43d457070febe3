// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/budget_output.h"
#include "apps/pelmora/output/output_file.h"
#include "apps/pelmora/output/shift_output.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/session.h"
#include "apps/pelmora/trouble.h"
#include "report/drift_page.h"
#include "report/drift_rows.h"
#include "report/json_null.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace pelmora::cli {
namespace {

using calibration::DatedCurve;
using calibration::Drift;
using calibration::DriftPlace;
using calibration::DriftValue;

struct DriftRequest {
  DatabaseOption curves;
  std::string meter, series, output;
  std::vector<std::string> places;
  std::optional<double> limit;
  bool asJson = false;
};

struct DriftResult {
  Drift drift;
  std::vector<std::string> notes;  // calibrations that are left out, and curves that are old
};

std::string dateOf(const calibration::Database& lab, const calibration::Meter& meter) {
  for (const calibration::Run& run : lab.runs(meter)) {
    if (!run.date.empty()) return run.date;
  }
  return {};
}

DriftResult driftOf(const DriftRequest& request, Session& session) {
  const calibration::Database& lab = session.database();
  DriftResult result;
  std::vector<DatedCurve> curves;
  for (const calibration::Meter& meter : lab.calibrations(request.meter)) {
    try {
      const auto stored = lab.series(meter, request.series);
      if (const std::string warning = stored.ageWarning(); !warning.empty())
        result.notes.push_back("note: " + warning);
      const std::string date = dateOf(lab, meter);
      curves.push_back({meter.calibration, date, calibration::yearsOf(date),
                        lab.fittedCurve(stored, session.observer())});
    } catch (const calibration::NotFound& failure) {
      result.notes.push_back("calibration " + std::to_string(meter.calibration) +
                             " is left out: " + failure.what());
    }
  }
  calibration::DriftOptions options;
  for (const std::string& text : request.places)
    options.roshko.push_back(numberOption("--at", text));
  options.limitPercent = request.limit;
  result.drift = calibration::driftOf(std::move(curves), options);
  return result;
}

std::string driftPlaceText(const Drift& drift, const DriftPlace& place) {
  const auto right = TextAlign::right;
  TextTable table({{"Calibration"},
                   {"Strouhal", right},
                   {"U %", right},
                   {"First %", right},
                   {"Previous %", right},
                   {"U %", right},
                   {"En", right},
                   {""}});
  for (std::size_t i = 0; i < place.values.size(); ++i)
    table.addRow(report::driftCells(drift, place, i, {"shift", "limit"}));
  std::string text = "Roshko " + significantText(place.roshko, 6) + "\n" + table.text();
  if (place.chart) text += wrapped(report::controlLimitsText(place), 0);
  return text + "\n";
}

std::string adviceText(const Drift& drift) {
  if (!drift.intervalYears)
    return wrapped("No interval is recommended: " + drift.whyNoInterval + ".", 0);
  const std::string years = significantText(*drift.intervalYears, 2);
  return wrapped((*drift.intervalYears > 0
                      ? "Recommended interval: " + years + " years. "
                      : std::string("The scatter of the calibrations alone exceeds the limit: no "
                                    "interval keeps the meter within it. ")) +
                     drift.assumptions(),
                 0);
}

nlohmann::json placeJson(const Drift& drift, const DriftPlace& place) {
  nlohmann::json value{{"roshko", place.roshko}, {"values", nlohmann::json::array()}};
  for (std::size_t i = 0; i < place.values.size(); ++i) {
    const DriftValue& each = place.values[i];
    nlohmann::json one{{"calibration", drift.calibrations[i].calibration},
                       {"strouhal", each.strouhal},
                       {"percent", each.percent},
                       {"sinceFirst", judgedShiftJson(each.sinceFirst)},
                       {"sincePrevious", judgedShiftJson(each.sincePrevious)},
                       {"isBeyondLimits", each.isBeyondLimits}};
    addBudget(one, each.budget);
    value["values"].push_back(std::move(one));
  }
  value["controlLimits"] = nullptr;
  if (place.chart) {
    value["controlLimits"] = {{"centre", place.chart->centre},
                              {"low", place.chart->low},
                              {"high", place.chart->high},
                              {"sigma", place.chart->sigma},
                              {"fromUncertainty", place.chart->isFromUncertainty}};
  }
  value["interval"] = nullptr;
  if (place.interval) {
    value["interval"] = {{"years", place.interval->years},
                         {"isCapped", place.interval->isCapped},
                         {"ratePercentPerYear", place.interval->ratePercentPerYear},
                         {"rateUncertainty", place.interval->rateUncertainty},
                         {"dispersionPercent", place.interval->dispersionPercent},
                         {"coverageFactor", place.interval->coverageFactor}};
  }
  return value;
}

std::string driftJson(const DriftRequest& request, const DriftResult& result) {
  const Drift& drift = result.drift;
  nlohmann::json value{{"database", request.curves.path},
                       {"serialNumber", request.meter},
                       {"series", request.series},
                       {"calibrations", nlohmann::json::array()},
                       {"places", nlohmann::json::array()},
                       {"notes", result.notes},
                       {"intervalYears", report::orNull(drift.intervalYears)},
                       {"whyNoInterval", drift.whyNoInterval},
                       {"assumptions", drift.assumptions()}};
  for (const DatedCurve& each : drift.calibrations) {
    value["calibrations"].push_back({{"calibration", each.calibration},
                                     {"date", each.date},
                                     {"years", report::orNull(each.years)}});
  }
  for (const DriftPlace& place : drift.places) value["places"].push_back(placeJson(drift, place));
  return report::jsonText(value);
}

void requireKnownKind(const std::string& file) {
  if (file.empty() || file.ends_with(".html") || file.ends_with(".svg") || file.ends_with(".json"))
    return;
  throw Trouble(ExitCode::usage, "--output: '" + file + "' has no known ending",
                "end the name in .html, .svg or .json");
}

void showDrift(const DriftRequest& request) {
  requireKnownKind(request.output);
  if (!request.output.empty()) requireOutputFile(request.output, request.curves.path);
  Session session(request.curves, calibration::Mode::read);
  const DriftResult result = driftOf(request, session);
  session.progress().clear();
  const std::string title = request.series + " of meter " + request.meter;
  if (request.output.ends_with(".svg"))
    writeOutputFile(request.output, report::driftPicture(result.drift, title));
  if (request.output.ends_with(".html"))
    writeOutputFile(request.output, report::driftPage(result.drift, title));
  if (request.output.ends_with(".json"))
    writeOutputFile(request.output, driftJson(request, result));
  if (request.asJson) return printData(driftJson(request, result));
  std::string text = wrapped("Drift of " + title + " over " +
                                 counted(result.drift.calibrations.size(), "calibration") + ".",
                             0) +
                     "\n";
  for (const DriftPlace& place : result.drift.places) text += driftPlaceText(result.drift, place);
  text += wrapped(
      "First, Previous: the change since that calibration. Its U leaves out what the stand does to "
      "both calibrations alike. A shift with En beyond 1 is significant.",
      0);
  text += adviceText(result.drift);
  for (const std::string& note : result.notes) text += wrapped(note + ".", 0);
  if (!request.output.empty()) text += wrapped("Wrote " + request.output + ".", 0);
  printData(text);
}

}  // namespace

void addDriftCommand(Program& program) {
  Command command = program.add(
      "drift",
      "Show how a meter's curve changes over its calibrations at fixed Roshko numbers: shifts with "
      "their uncertainty, control limits, and advice on the interval");
  const auto request = std::make_shared<DriftRequest>();
  addDatabase(command, request->curves);
  addMeter(command, request->meter, true);
  addSeries(command, request->series, true);
  command.addTexts(
      {"--at", "ROSHKO", "Roshko number to look at; repeat (default: five over the common range)"},
      request->places);
  command.addText(
      {"--limit", "PERCENT", "Largest change that your application allows: recommends an interval"},
      [request](const std::string& text) {
        request->limit = numberOption("--limit", text);
        if (*request->limit > 0) return;
        throw Trouble(ExitCode::usage, "--limit: '" + text + "' is not above 0", "give per cent");
      });
  addPath(command,
          {"-o,--output", "FILE", "Write a page (.html), a picture (.svg) or JSON (.json) as well"},
          request->output);
  addJson(command, request->asJson);
  command.onRun([request] { showDrift(*request); });
}

}  // namespace pelmora::cli
