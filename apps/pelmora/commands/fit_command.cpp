// SPDX-License-Identifier: MIT
#include "apps/pelmora/checked_fit.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/input/fit_input.h"
#include "apps/pelmora/input/range_question.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/names.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/output/series_drawing.h"
#include "apps/pelmora/output/terminal_colour.h"
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
  FitCall call;
  std::optional<RangePolicy> onRange;  // absent: the operator is asked, or else it is refused
  bool asJson = false, isDryRun = false, neverAsks = false;
  bool drawsPlot = false, isAscii = false;
};

FitWish wishOf(const FitRequest& request) {
  const FitCall& call = request.call;
  FitWish wish{fitSettings(call.tests, call.choices, call.ratio), call.choices.isStrict};
  wish.settings.min = call.min;
  wish.settings.max = call.max;
  wish.settings.inverted = call.inverted;
  wish.settings.ignoreResiduals = call.ignoreResiduals;
  wish.settings.outside = request.onRange.value_or(RangePolicy::refuse);
  return wish;
}

RangeQuestion questionOf(const FitRequest& request) {
  if (request.onRange || request.neverAsks || !isAnyoneAtTerminal()) return {};
  return [](const std::string& text) { return askAboutRange(text); };
}

std::string fitHeadline(const calibration::Fit& fit) {
  return wrapped("Series '" + fit.series + "', meter " + fit.meter.serial + ", calibration " +
                     std::to_string(fit.meter.calibration) + ": " +
                     counted(fit.merged.size(), "merged point") + ", Roshko " +
                     significantText(fit.min, 6) + " to " + significantText(fit.max, 6) +
                     ", band " + significantText(fit.settings.band, 4) + " %",
                 0);
}

// Warns that --min and --max only crop the table. Empty if no fitted point lies outside.
std::string cropLine(const calibration::Fit& fit) {
  std::size_t beyond = 0;
  for (const double roshko : fit.fitted.column(0))
    beyond += roshko < fit.min || roshko > fit.max ? 1 : 0;
  if (beyond == 0) return {};
  return wrapped("The table is cropped: " + counted(beyond, "point") + " beyond it " +
                     (beyond == 1 ? "is" : "are") +
                     " fitted anyway (--fit-min, --fit-max leave points out)",
                 0);
}

std::string fitText(const std::string& database, const CheckedFit& checked, bool isDryRun) {
  const calibration::Fit& fit = checked.fit;
  std::string text = fitHeadline(fit);
  if (checked.changedMeanwhile) {
    text += wrapped(
        "note: another program changed the series during the fit; this is the fit of "
        "the series as it is now.",
        0);
  }
  text += cropLine(fit) + referenceLine(fit);
  if (const std::string cut = cutLines(fit); !cut.empty()) text += "\n" + cut;
  if (!fit.outcome.Equations.empty()) text += "\n" + equationTable(fit);
  if (!checked.isStored) return text;
  const std::string& name = fit.chosen().Name;
  return text + "\n" +
         wrapped(std::string(isDryRun ? "To be stored: " : "Stored ") +
                     (name == calibration::referenceCurveName ? "the reference curve itself"
                                                              : "the curve of " + name) +
                     " with " + counted(fit.curve.size(), "point") + " in " + database + ".",
                 0);
}

// Called while the change is open: at its end a dry run undoes the curve that the points belong to.
std::string pictureOf(const FitRequest& request, Session& session, const CheckedFit& checked) {
  if (!request.drawsPlot) return {};
  const calibration::Fit& fit = checked.fit;
  const DrawnSeries series{session.database().points(fit.meter, fit.series), fit.curve,
                           fit.settings.band};
  return "\n" + drawing(series, drawingSize(),
                        request.isAscii ? PlotStyle::ascii : PlotStyle::unicode,
                        showsColour(stdout));
}

void fitAndStore(const FitRequest& request) {
  requireName("--meter", request.call.meter);
  requireName("--series", request.call.series);
  if (request.drawsPlot && request.asJson) {
    throw Trouble(ExitCode::usage, "--plot and --json exclude each other", "leave one of them out");
  }
  const FitWish wish = wishOf(request);
  Session session(request.curves, calibration::Mode::write);
  const calibration::Meter meter =
      session.database().meter(request.call.meter, request.call.calibration);
  CommandChange change(session, "fit", request.isDryRun);
  const CheckedFit checked =
      fitSeries(change, meter, request.call.series, wish, questionOf(request));
  const std::string picture = pictureOf(request, session, checked);
  change.finish();
  session.progress().clear();
  if (request.asJson) {
    nlohmann::json value = fitJson(checked, request.call);
    value["database"] = session.path();
    value["meter"] = meterJson(checked.fit.meter);
    change.addTo(value);
    printData(jsonText(value));
  } else {
    printData(fitText(session.path(), checked, request.isDryRun) + picture +
              stepLines(checked.fit, stepsFor(checked.fit, request.call)) + change.closingText());
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
                                "store the curve that the rule of --choose takes");
  const auto request = std::make_shared<FitRequest>();
  addDatabase(command, request->curves);
  FitCall& call = request->call;
  addMeter(command, call.meter, true);
  addSeries(command, call.series, true);
  addCalibration(command, call.calibration);
  addRangeEnd(command, "--min", call.min,
              "Where the curve's table begins (default: at the first fitted point). It crops the "
              "table alone: the points below are fitted, unless --fit-min leaves them out");
  addRangeEnd(command, "--max", call.max,
              "Where the curve's table ends (default: at the last fitted point); see --fit-max");
  addFitTests(command, call.tests);
  addFitChoices(command, call.choices, usualChoice());
  command.addFlag("--ratio", call.ratio, "The series is a rotor ratio: it must fall with Roshko");
  command.addFlag("--inverted", call.inverted, "Merge the raw parts from the other end");
  command.addFlag("--ignore-residuals", call.ignoreResiduals, "Skip the residual test");
  command.addChoice(
      {"--on-range", "abort|retry|ignore",
       "If the range extends beyond the raw points: abort, retry with the raw range, or ignore it "
       "and extrapolate (default: ask at a terminal, or else abort)"},
      [request](const std::string& text) {
        request->call.onRange = text;
        request->onRange = answers.at(text);
      });
  command.addFlag("--plot", request->drawsPlot,
                  "Draw points, curve, band and residuals in the terminal");
  command.addFlag("--ascii", request->isAscii, "Draw with ASCII characters alone");
  addDryRun(command, request->isDryRun);
  addJson(command, request->asJson);
  addNoInput(command, request->neverAsks);
  command.onRun([request] {
    request->call.database = request->curves.path;
    fitAndStore(*request);
  });
}

}  // namespace pelmora::cli
