// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/output/text_table.h"

#include <pelmora/calibration/words.h>

#include <algorithm>

namespace pelmora::cli {
namespace {

using Align = TextTable::Align;
using calibration::hasSolution;
using calibration::verdictText;

constexpr int determinationDigits = 6;

std::string determination(const EquationOutcome& equation, double value) {
  return hasSolution(equation) ? fixedText(value, determinationDigits) : "-";
}

// "Polynomial 7th Order and 4 more fail in the same way."; empty for none.
std::string othersOf(const std::vector<std::string>& names) {
  if (names.size() < 2) return {};
  if (names.size() == 2) return " " + names[1] + " fails in the same way.";
  const std::string rest =
      names.size() == 3 ? names[2] : std::to_string(names.size() - 2) + " more";
  return " " + names[1] + " and " + rest + " fail in the same way.";
}

// Each reason once, in the words for the equation that came nearest.
std::string reasonLines(const calibration::Fit& fit) {
  std::string lines;
  for (const calibration::Rejected& rejected : calibration::rejectedTogether(fit)) {
    const std::string stop = rejected.why.ends_with('.') ? "" : ".";
    const auto& equations = fit.outcome.Equations;
    const auto first = std::ranges::find(equations, rejected.names[0], &EquationOutcome::Name);
    const std::string help = solutionAdvice(fit, *first);
    lines += wrapped(rejected.names[0] + ": " + withShortNumbers(rejected.why) + stop +
                         (help.empty() ? "" : " What would help: " + help + ".") +
                         othersOf(rejected.names),
                     2);
  }
  return lines;
}

std::string worstText(const EquationOutcome& equation) {
  return hasSolution(equation) ? percentText(equation.WorstResidualRatio * 100) : "-";
}

std::string worstPlaceText(const EquationOutcome& equation) {
  return hasSolution(equation) ? significantText(equation.WorstResidualX, 6) : "-";
}

// The order decides which equations the component's rule tries at all.
std::string asTried(const calibration::Fit& fit) {
  TextTable table({{"Equation", Align::left},
                   {"Verdict", Align::left},
                   {"R2", Align::right},
                   {"Adjusted", Align::right},
                   {"Worst %", Align::right},
                   {"at Roshko", Align::right}});
  const auto& equations = fit.outcome.Equations;
  for (auto equation = equations.rbegin(); equation != equations.rend(); ++equation) {
    table.addRow({equation->Name, verdictText(equation->Verdict),
                  determination(*equation, equation->Statistics.RSquared),
                  determination(*equation, equation->Statistics.AdjustedRSquared),
                  worstText(*equation), worstPlaceText(*equation)});
  }
  return table.text();
}

// With the number by which the trusted rule decides.
std::string byRank(const calibration::Fit& fit) {
  constexpr int aiccDigits = 1;
  TextTable table({{"Equation", Align::left},
                   {"Verdict", Align::left},
                   {"AICc", Align::right},
                   {"Worst %", Align::right},
                   {"at Roshko", Align::right}});
  for (const calibration::RankedEquation& ranked : fit.equations()) {
    const EquationOutcome& equation = ranked.outcome;
    table.addRow({equation.Name, verdictText(equation.Verdict),
                  equation.Aicc ? fixedText(*equation.Aicc, aiccDigits) : "-", worstText(equation),
                  worstPlaceText(equation)});
  }
  return table.text();
}

std::string offText(const std::optional<double>& percent) {
  return percent ? percentText(*percent) : "-";
}

}  // namespace

std::string cutLines(const calibration::Fit& fit) {
  constexpr std::size_t mostCutRows = 12;
  if (fit.cut.empty()) return {};
  TextTable table({{"Part", Align::right},
                   {"#", Align::right},
                   {"Roshko", Align::right},
                   {"Strouhal", Align::right},
                   {"Off %", Align::right}});
  for (std::size_t i = 0; i < std::min(mostCutRows, fit.cut.size()); ++i) {
    const calibration::CutPoint& point = fit.cut[i];
    table.addRow({std::to_string(point.part), std::to_string(point.number),
                  alignedText(point.roshko, 7), alignedText(point.strouhal, 7),
                  offText(point.offPercent)});
  }
  const std::size_t rest = fit.cut.size() - std::min(mostCutRows, fit.cut.size());
  return wrapped("The merge cut " + counted(fit.cut.size(), "point") +
                     (fit.settings.ratio ? ", where the ratio does not fall or the parts overlap:"
                                         : ", where the parts overlap:"),
                 0) +
         table.text() +
         (rest > 0 ? "... and " + std::to_string(rest) + " more: 'pelmora points' lists them.\n"
                   : "");
}

std::string referenceLine(const calibration::Fit& fit) {
  if (!fit.trust) return {};
  const calibration::Trust& trust = *fit.trust;
  const std::string unit = trust.isRelative ? " %" : "";
  return wrapped("Reference curve through " + counted(trust.points, "point") + " at " +
                     counted(trust.flows, "flow") + ": noise " +
                     significantText(trust.noiseHigh, 2) + unit + " at the largest flow, " +
                     significantText(trust.noiseLow, 2) + unit + " at the smallest",
                 0);
}

std::string equationTable(const calibration::Fit& fit) {
  return (fit.settings.choice == calibration::Choice::trusted ? byRank(fit) : asTried(fit)) +
         reasonLines(fit) + warningLines(fit);
}

std::string warningLines(const calibration::Fit& fit) {
  std::string lines;
  for (const CurveWarning& warning : fit.outcome.Warnings) {
    lines += wrapped("warning: " + withShortNumbers(warning.Text), 2);
  }
  return lines;
}

std::string chosenTable(const std::vector<CheckedFit>& fits) {
  TextTable table({{"Series", Align::left},
                   {"Equation", Align::left},
                   {"Adj. R2", Align::right},
                   {"Worst %", Align::right},
                   {"Curve", Align::left}});
  for (const CheckedFit& checked : fits) {
    const calibration::Fit& fit = checked.fit;
    if (!checked.isStored) {
      table.addRow({fit.series, "none", "-", "-", "not stored"});
      continue;
    }
    const EquationOutcome& chosen = fit.chosen();
    table.addRow(
        {fit.series, chosen.Name, determination(chosen, chosen.Statistics.AdjustedRSquared),
         percentText(chosen.WorstResidualRatio * 100), counted(fit.curve.size(), "point")});
  }
  return table.text();
}

}  // namespace pelmora::cli
