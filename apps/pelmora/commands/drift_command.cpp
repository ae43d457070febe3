// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/meter_drift.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/budget_output.h"
#include "apps/pelmora/output/drift_output.h"
#include "apps/pelmora/output/output_file.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/session.h"
#include "apps/pelmora/trouble.h"
#include "report/drift_page.h"
#include "report/drift_rows.h"
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

std::string jsonOf(const DriftRequest& request, const MeterDrift& result) {
  nlohmann::json value = driftJson(result);
  value["database"] = request.curves.path;
  value["serialNumber"] = request.meter;
  value["series"] = request.series;
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
  calibration::DriftOptions options;
  for (const std::string& text : request.places)
    options.roshko.push_back(numberOption("--at", text));
  options.limitPercent = request.limit;
  const MeterDrift result = meterDrift(session, request.meter, request.series, options);
  session.progress().clear();
  const std::string title = request.series + " of meter " + request.meter;
  if (request.output.ends_with(".svg"))
    writeOutputFile(request.output, report::driftPicture(result.drift, title));
  if (request.output.ends_with(".html"))
    writeOutputFile(request.output, report::driftPage(result.drift, title));
  if (request.output.ends_with(".json")) writeOutputFile(request.output, jsonOf(request, result));
  if (request.asJson) return printData(jsonOf(request, result));
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
