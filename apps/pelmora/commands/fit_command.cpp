// SPDX-License-Identifier: MIT
#include "apps/pelmora/checked_fit.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/input/fit_input.h"
#include "apps/pelmora/input/range_question.h"
#include "apps/pelmora/options/names.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/output/text_table.h"

#include <nlohmann/json.hpp>

#include <map>
#include <memory>

namespace pelmora::cli {
namespace {

using calibration::RangePolicy;

const std::map<std::string, RangePolicy> answers{{"abort", RangePolicy::refuse},
                                                 {"retry", RangePolicy::wholeRange},
                                                 {"ignore", RangePolicy::extrapolate}};

struct FitRequest {
  DatabaseOption curves;
  std::string meter, series;
  std::int16_t calibration = -1;
  FitTests tests;
  std::optional<double> min, max;
  std::optional<RangePolicy> onRange;  // absent: the operator is asked, or else it is refused
  bool ratio = false, inverted = false, ignoreResiduals = false;
  bool asJson = false, isDryRun = false, neverAsks = false;
};

calibration::FitSettings settingsOf(const FitRequest& request) {
  calibration::FitSettings settings = fitSettings(request.tests, request.ratio);
  settings.min = request.min;
  settings.max = request.max;
  settings.inverted = request.inverted;
  settings.ignoreResiduals = request.ignoreResiduals;
  settings.outside = request.onRange.value_or(RangePolicy::refuse);
  return settings;
}

RangeQuestion questionOf(const FitRequest& request) {
  if (request.onRange || request.neverAsks || !isAnyoneAtTerminal()) return {};
  return [](const std::string& text) { return askAboutRange(text); };
}

std::string fitText(const std::string& database, const CheckedFit& checked, bool isDryRun) {
  const calibration::Fit& fit = checked.fit;
  std::string text =
      wrapped("Series '" + fit.series + "', meter " + fit.meter.serial + ", calibration " +
                  std::to_string(fit.meter.calibration) + ": " +
                  counted(fit.merged.size(), "merged point") + ", Roshko " +
                  significantText(fit.min, 6) + " to " + significantText(fit.max, 6) + ", band " +
                  significantText(fit.settings.band, 4) + " %",
              0);
  if (checked.changedMeanwhile) {
    text += wrapped(
        "note: another program changed the series during the fit; this is the fit of "
        "the series as it is now.",
        0);
  }
  text += "\n" + equationTable(fit);
  if (!checked.isStored) return text;
  return text + "\n" +
         wrapped(std::string(isDryRun ? "To be stored: the curve of " : "Stored the curve of ") +
                     fit.chosen().Name + " with " + counted(fit.curve.size(), "point") + " in " +
                     database + ".",
                 0);
}

void fitAndStore(const FitRequest& request) {
  requireName("--meter", request.meter);
  requireName("--series", request.series);
  const calibration::FitSettings settings = settingsOf(request);
  Session session(request.curves, calibration::Mode::write);
  const calibration::Meter meter = session.database().meter(request.meter, request.calibration);
  CommandChange change(session, "fit", request.isDryRun);
  const CheckedFit checked =
      fitSeries(change, meter, request.series, settings, questionOf(request));
  change.finish();
  session.progress().clear();
  if (request.asJson) {
    nlohmann::json value = fitJson(checked);
    value["database"] = session.path();
    value["meter"] = meterJson(checked.fit.meter);
    change.addTo(value);
    printData(jsonText(value));
  } else {
    printData(fitText(session.path(), checked, request.isDryRun) + change.closingText());
  }
  if (checked.trouble) throw Trouble(*checked.trouble);
}

void addRangeEnd(Command& command, const std::string& name, std::optional<double>& end,
                 const std::string& help) {
  command.addText({name, "ROSHKO", help},
                  [&end, name](const std::string& text) { end = numberOption(name, text); });
}

}  // namespace

void addFitCommand(Program& program) {
  Command command = program.add("fit",
                                "Merge a series' raw parts, fit every equation, and "
                                "store the best curve that passes the tests");
  const auto request = std::make_shared<FitRequest>();
  addDatabase(command, request->curves);
  addMeter(command, request->meter, true);
  addSeries(command, request->series, true);
  addCalibration(command, request->calibration);
  addRangeEnd(command, "--min", request->min, "Start of the curve (default: of the merged points)");
  addRangeEnd(command, "--max", request->max, "End of the curve (default: of the merged points)");
  addFitTests(command, request->tests);
  command.addFlag("--ratio", request->ratio,
                  "The series is a rotor ratio: it must fall with Roshko");
  command.addFlag("--inverted", request->inverted, "Merge the raw parts from the other end");
  command.addFlag("--ignore-residuals", request->ignoreResiduals, "Skip the residual test");
  command.addChoice(
      {"--on-range", "abort|retry|ignore",
       "If the range extends beyond the raw points: abort, retry with the raw range, or ignore it "
       "and extrapolate (default: ask at a terminal, or else abort)"},
      [request](const std::string& text) { request->onRange = answers.at(text); });
  addDryRun(command, request->isDryRun);
  addJson(command, request->asJson);
  addNoInput(command, request->neverAsks);
  command.onRun([request] { fitAndStore(*request); });
}

}  // namespace pelmora::cli
