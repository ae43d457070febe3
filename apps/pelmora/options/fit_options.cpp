// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/fit_options.h"

#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/names.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"

#include <limits>
#include <utility>

namespace pelmora::cli {
namespace {

constexpr std::int64_t mostPointsOfTable = std::numeric_limits<std::int16_t>::max();
constexpr std::int64_t highestOrder = 24;  // an equation has at most 25 parameters
const double usualBand = calibration::FitSettings().band;

void addRoshko(Command& command, const std::string& name, std::optional<double>& roshko,
               const std::string& help) {
  command.addText({name, "ROSHKO", help},
                  [&roshko, name](const std::string& text) { roshko = numberOption(name, text); });
}

void addMergeOptions(Command& command, calibration::SettingsChange& change) {
  const auto requireOne = [](bool isSecond) {
    if (!isSecond) return;
    throw Trouble(ExitCode::usage, "--merge-band and --no-cut exclude each other",
                  "without a cut there is no band to cut by: leave one out");
  };
  command.addText(
      {"--merge-band", "PERCENT",
       "Where raw parts overlap, cut the trailing points that lie off the other part by more than "
       "PERCENT % (default: the component's rule, 0.1)"},
      [&change, requireOne](const std::string& text) {
        requireOne(change.cutsOverlap == false);
        change.mergeBand = numberOption("--merge-band", text);
        change.cutsOverlap = true;
        if (*change.mergeBand > 0) return;
        throw Trouble(ExitCode::usage, "--merge-band: '" + text + "' is not above 0",
                      "give per cent, or --no-cut to cut nothing");
      });
  command.addFlag(
      "--no-cut",
      [&change, requireOne] {
        requireOne(change.mergeBand.has_value());
        change.cutsOverlap = false;
      },
      "The merge keeps every point, also where raw parts contradict each other");
}

}  // namespace

std::string usualChoice() { return calibration::choiceKey(calibration::FitSettings().choice); }

calibration::SettingsChange FitChoices::change() const {
  for (const std::string& name : only) requireName("--only", name);
  for (const std::string& name : without) requireName("--without", name);
  calibration::SettingsChange all = given;
  if (!only.empty()) all.only = only;
  if (!without.empty()) all.without = without;
  return all;
}

void addFitTests(Command& command, FitTests& options) {
  command.addText({"--points", "N", "Points of the fitted curve (default 40)"},
                  [&options](const std::string& text) {
                    options.points = static_cast<std::int16_t>(
                        integerOption("--points", text, 2, mostPointsOfTable));
                  });
  command.addText(
      {"--band", "PERCENT",
       "Band of the band test in per cent (default " + significantText(usualBand, 6) + ")"},
      [&options](const std::string& text) {
        options.band = numberOption("--band", text);
        if (*options.band >= 0) return;
        throw Trouble(ExitCode::usage, "--band: '" + text + "' is negative",
                      "give per cent, 0 or more");
      });
  addPath(command,
          {"--equations", "PATH",
           "Equation file, or folder with 'equations.txt' and 'ratio equations.txt'"},
          options.equations);
}

void addChoose(Command& command, std::optional<calibration::Choice>& choice,
               const std::string& help) {
  command.addChoice({"--choose", "trusted|adjusted-r2", help},
                    [&choice](const std::string& text) { choice = calibration::choiceOf(text); });
}

void addChangedPercent(Command& command, const std::string& help,
                       std::function<void(double percent)> take) {
  command.addText({"--changed", "PERCENT", help},
                  [take = std::move(take)](const std::string& text) {
                    const double percent = numberOption("--changed", text);
                    if (percent < 0) {
                      throw Trouble(ExitCode::usage, "--changed: '" + text + "' is negative",
                                    "give per cent, 0 or more");
                    }
                    take(percent);
                  });
}

void addFitChoices(Command& command, FitChoices& options, const std::string& otherwise) {
  calibration::SettingsChange& change = options.given;
  addChoose(command, change.choice,
            "How the curve is chosen. trusted: the simplest equation that stays with a smooth "
            "reference curve over the whole range, or that curve itself. adjusted-r2: of the "
            "equations that pass at the points, the one with the highest adjusted R2 (default: " +
                otherwise + ")");
  command.addTexts({"--only", "NAME",
                    "Equation to try, and no other; repeat for more ('pelmora equations' lists "
                    "them)"},
                   options.only);
  command.addTexts({"--without", "NAME", "Equation to leave out; repeat for more"},
                   options.without);
  command.addText(
      {"--max-order", "N", "Highest order of the polynomials"}, [&change](const std::string& text) {
        change.maxOrder = static_cast<int>(integerOption("--max-order", text, 0, highestOrder));
      });
  command.addChoice(
      {"--spacing", "usual|optimal",
       "Where the points of the curve's table lie. usual: evenly in the logarithm of Roshko, "
       "closer together where a trusted curve bends. optimal: where a flow computer that reads "
       "linearly between them errs least"},
      [&change](const std::string& text) { change.spacing = calibration::spacingOf(text); });
  addRoshko(command, "--fit-min", change.fitMin, "Points below ROSHKO are not fitted");
  addRoshko(command, "--fit-max", change.fitMax, "Points above ROSHKO are not fitted");
  addMergeOptions(command, change);
  command.addFlag("--strict", options.isStrict,
                  "A curve with a warning is not stored: the command ends with exit code 6");
}

}  // namespace pelmora::cli
