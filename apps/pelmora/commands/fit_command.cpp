// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/checked_fit.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"

#include <nlohmann/json.hpp>

#include <map>
#include <memory>

namespace pelmora::cli {
namespace {

const std::map<std::string, RangeAnswer> answers{
    {"abort", RangeAnswer::abort}, {"retry", RangeAnswer::retry}, {"ignore", RangeAnswer::ignore}};

struct FitCommand {
  DatabaseOption curves;
  std::string meter, series;
  std::int16_t reCalID = -1;
  FitOptions options;
  FitTests tests;
  bool asJson = false, isDryRun = false, neverAsks = false;
};

std::string fitText(const CurveSession& session, const MeterInfo& meter, const SeriesFit& fit,
                    bool isDryRun) {
  std::string text = wrapped(
      "Series '" + fit.series + "', meter " + meter.SerialNumber + ", calibration " +
          std::to_string(meter.ReCalID) + ": " + counted(fit.merged.size(), "merged point") +
          ", Roshko " + significantText(fit.min, 6) + " to " + significantText(fit.max, 6) +
          ", band " + significantText(fit.options.band, 4) + " %",
      0);
  if (fit.changedMeanwhile) {
    text += wrapped(
        "note: another program changed the series during the fit; this is the fit of "
        "the series as it is now.",
        0);
  }
  text += "\n" + equationTable(fit);
  if (!fit.isStored) return text;
  return text + "\n" +
         wrapped(std::string(isDryRun ? "To be stored: the curve of " : "Stored the curve of ") +
                     fit.outcome.Equations[*fit.outcome.Chosen].Name + " with " +
                     counted(fit.curve.size(), "point") + " in " + session.path() + ".",
                 0);
}

void fitAndStore(const FitCommand& command) {
  CurveSession session(command.curves, Access::write);
  const MeterInfo meter = session.requireMeter(command.meter, command.reCalID);
  if (!command.neverAsks) session.askAtTerminal();
  StoredChange change(session, "fit", command.isDryRun);
  const SeriesFit fit = fitSeries(change, meter, command.series, command.options);
  change.finish();
  session.progress().clear();
  if (command.asJson) {
    nlohmann::json value = fitJson(fit);
    value["database"] = session.path();
    value["meter"] = meterJson(meter);
    change.addTo(value);
    printData(jsonText(value));
  } else {
    printData(fitText(session, meter, fit, command.isDryRun) + change.closingText());
  }
  if (fit.trouble) throw Trouble(*fit.trouble);
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
  const auto options = std::make_shared<FitCommand>();
  addDatabase(command, options->curves);
  addMeter(command, options->meter, true);
  addSeries(command, options->series, true);
  addCalibration(command, options->reCalID);
  addRangeEnd(command, "--min", options->options.min,
              "Start of the curve (default: of the merged points)");
  addRangeEnd(command, "--max", options->options.max,
              "End of the curve (default: of the merged points)");
  addFitTests(command, options->tests);
  command.addFlag("--ratio", options->options.ratio,
                  "The series is a rotor ratio: it must fall with Roshko");
  command.addFlag("--inverted", options->options.inverted,
                  "Merge the raw parts from the other end");
  command.addFlag("--ignore-residuals", options->options.ignoreResiduals, "Skip the residual test");
  command.addChoice(
      {"--on-range", "abort|retry|ignore",
       "If the range extends beyond the raw points: abort, retry with the raw range, or ignore it "
       "and extrapolate (default: ask at a terminal, or else abort)"},
      [options](const std::string& text) { options->options.onRange = answers.at(text); });
  addDryRun(command, options->isDryRun);
  addJson(command, options->asJson);
  addNoInput(command, options->neverAsks);
  command.onRun([options] {
    take(options->tests, options->options);
    fitAndStore(*options);
  });
}

}  // namespace pelmora::cli
