// The commands exclude and include: the same selection, the other way round.
// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_change.h"
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/point_output.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/suggested_command.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace pelmora::cli {
namespace {

struct ExclusionRequest {
  DatabaseOption curves;
  std::string meter, series, reason;
  std::int16_t reCalID = -1;
  std::vector<std::string> points;
  calibration::PointSelection selection;
  calibration::ExclusionOptions options;
  bool isExclusion = true, isDryRun = false, asJson = false;
};

constexpr std::int64_t highestNumber = 32767;

// "3", or "3-7" for all from 3 to 7.
void addNumbers(const std::string& text, std::vector<std::size_t>& numbers) {
  const auto dash = text.find('-', 1);
  const std::int64_t first = integerOption("--point", text.substr(0, dash), 1, highestNumber);
  const std::int64_t last = dash == std::string::npos
                                ? first
                                : integerOption("--point", text.substr(dash + 1), 1, highestNumber);
  if (last < first)
    throw Trouble(ExitCode::usage, "--point '" + text + "' is an empty range",
                  "write it from small to large");
  for (std::int64_t number = first; number <= last; ++number)
    numbers.push_back(static_cast<std::size_t>(number));
}

std::pair<double, double> rangeOption(const std::string& text) {
  const auto colon = text.find(':');
  if (colon == std::string::npos)
    throw Trouble(ExitCode::usage, "--all-between '" + text + "' is not a range",
                  "write it as LOW:HIGH");
  return {numberOption("--all-between", text.substr(0, colon)),
          numberOption("--all-between", text.substr(colon + 1))};
}

std::string listed(const std::vector<std::string>& names) {
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) text += i + 1 == names.size() ? " and " : ", ";
    text += "'" + names[i] + "'";
  }
  return text;
}

std::string nextSteps(const ExclusionRequest& request, const calibration::ExclusionChange& change,
                      calibration::CurveAge age) {
  std::string text;
  if (!change.sameReadings.empty()) {
    const bool areSeveral = change.sameReadings.size() > 1;
    text += wrapped(
        "Series " + listed(change.sameReadings) + (areSeveral ? " are made" : " is made") +
            " of the same readings and " + (areSeveral ? "were" : "was") +
            " not changed; add --with-derived to change " + (areSeveral ? "them" : "it") + " too.",
        0);
  }
  if (request.isDryRun || age == calibration::CurveAge::current) return text;
  // A refit uses the settings that are kept with the curve.
  const bool hasCurve = age != calibration::CurveAge::none;
  std::vector<std::string> words{hasCurve ? "refit" : "fit", request.curves.path};
  addSeriesWords(words, request.meter, request.reCalID, request.series);
  return text +
         wrapped(hasCurve ? "The stored curve is older than the points now. Fit it again:"
                          : "No curve is stored for the series yet. Fit it:",
                 0) +
         "  " + suggestedCommand(words) + "\n";
}

std::string headline(const ExclusionRequest& request, const calibration::ExclusionChange& change) {
  const std::size_t count = change.points.size();
  const std::string points = std::to_string(count) + (count == 1 ? " point" : " points");
  const bool isOut = request.isExclusion;
  if (count == 0)
    return wrapped(isOut ? "These points are excluded already: nothing was changed."
                         : "None of these points is excluded: nothing was changed.",
                   0);
  const std::string verb =
      std::string(request.isDryRun ? "Would be " : "") +
      (request.isDryRun ? (isOut ? "excluded" : "included") : (isOut ? "Excluded" : "Included"));
  return wrapped(verb + ": " + points + " of meter " + request.meter +
                     (isOut ? "; reason: " + request.reason : ""),
                 0) +
         "\n" + changedPointsTable(change.points);
}

void changeExclusions(const ExclusionRequest& request) {
  Session session(request.curves, calibration::Mode::write);
  calibration::Database& lab = session.database();
  CommandChange change(session, request.isExclusion ? "exclude" : "include", request.isDryRun);
  change.begin();
  const calibration::Meter meter = lab.meter(request.meter, request.reCalID);
  const auto outcome =
      request.isExclusion
          ? lab.exclude(meter, request.series, request.selection, request.reason, request.options)
          : lab.include(meter, request.series, request.selection, request.options);
  const calibration::StoredSeries stored = lab.series(meter, request.series);
  change.finish();
  if (!request.asJson) {
    std::string text = headline(request, outcome) + droppedLines(outcome.dropped);
    if (!outcome.points.empty()) text += "\n" + nextSteps(request, outcome, stored.age);
    return printData(text + change.closingText());
  }
  nlohmann::json points = nlohmann::json::array(), dropped = nlohmann::json::array();
  for (const auto& point : outcome.points) points.push_back(changedPointJson(point));
  for (const auto& end : outcome.dropped) dropped.push_back(droppedJson(end));
  nlohmann::json value{{"database", session.path()},
                       {"meter", report::meterJson(meter)},
                       {"series", stored.name},
                       {"points", points},
                       {"sameReadings", outcome.sameReadings},
                       {"dropped", dropped},
                       {"curve", calibration::curveAgeKey(stored.age)}};
  if (request.isExclusion) value["reason"] = request.reason;
  change.addTo(value);
  printData(report::jsonText(value));
}

void addSelection(Command& command, const std::shared_ptr<ExclusionRequest>& request) {
  addDatabase(command, request->curves);
  addMeter(command, request->meter, true);
  addSeries(command, request->series, true);
  command.addText({"--part", "N", "Raw part, 1 to 4 (default: all, for the ranges of Roshko)"},
                  [request](const std::string& text) {
                    request->selection.part = static_cast<int>(integerOption("--part", text, 1, 4));
                  });
  command.addTexts({"--point", "N",
                    "Point of that part, or several as N-M; 'pelmora points' shows the numbers; "
                    "may be repeated"},
                   request->points);
  command.addText({"--all-below", "ROSHKO", "All points below this Roshko number"},
                  [request](const std::string& text) {
                    request->selection.below = numberOption("--all-below", text);
                  });
  command.addText({"--all-above", "ROSHKO", "All points above this Roshko number"},
                  [request](const std::string& text) {
                    request->selection.above = numberOption("--all-above", text);
                  });
  command.addText(
      {"--all-between", "LOW:HIGH", "All points from one Roshko number to another"},
      [request](const std::string& text) { request->selection.between = rangeOption(text); });
  command.addFlag("--all", request->selection.all, "All points of the part or the series");
}

void addRest(Command& command, const std::shared_ptr<ExclusionRequest>& request) {
  command.addTexts({"--also-in", "SERIES",
                    "The points with the same part and numbers of this series, too; may be "
                    "repeated"},
                   request->options.alsoIn);
  command.addFlag("--with-derived", request->options.inDerivedSeries,
                  "Also in Rotor Sum and Ratio, which are made of the same readings");
  addCalibration(command, request->reCalID);
  addDryRun(command, request->isDryRun);
  addJson(command, request->asJson);
  command.onRun([request] {
    for (const std::string& text : request->points) addNumbers(text, request->selection.numbers);
    changeExclusions(*request);
  });
}

}  // namespace

void addExcludeCommand(Program& program) {
  Command command = program.add(
      "exclude",
      "Leave points out of a series, with a reason. They leave the raw points, so that every "
      "program fits the series without them, and are kept; 'pelmora include' puts them back. An "
      "exclusion survives refit and a new import of the same job.");
  const auto request = std::make_shared<ExclusionRequest>();
  addSelection(command, request);
  command.addText({"--reason", "TEXT", "Why; kept with the points", true}, request->reason);
  addRest(command, request);
}

void addIncludeCommand(Program& program) {
  Command command = program.add("include", "Put excluded points back where they were");
  const auto request = std::make_shared<ExclusionRequest>();
  request->isExclusion = false;
  addSelection(command, request);
  addRest(command, request);
}

}  // namespace pelmora::cli
