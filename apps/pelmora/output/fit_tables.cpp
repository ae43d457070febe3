// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/fit_advice.h"
#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/output/text_table.h"

#include <pelmora/calibration/words.h>

namespace pelmora::cli {
namespace {

using Align = TextTable::Align;
using calibration::hasSolution;
using calibration::verdictText;

constexpr int determinationDigits = 6;

std::string determination(const EquationOutcome& equation, double value) {
  return hasSolution(equation) ? fixedText(value, determinationDigits) : "-";
}

}  // namespace

std::string equationTable(const calibration::Fit& fit) {
  TextTable table({{"Equation", Align::left},
                   {"Verdict", Align::left},
                   {"R2", Align::right},
                   {"Adjusted", Align::right},
                   {"Worst %", Align::right},
                   {"at Roshko", Align::right}});
  // In the order in which they were tried.
  const auto& equations = fit.outcome.Equations;
  std::string reasons;
  for (auto equation = equations.rbegin(); equation != equations.rend(); ++equation) {
    const bool solved = hasSolution(*equation);
    table.addRow({equation->Name, verdictText(equation->Verdict),
                  determination(*equation, equation->Statistics.RSquared),
                  determination(*equation, equation->Statistics.AdjustedRSquared),
                  solved ? percentText(equation->WorstResidualRatio * 100) : "-",
                  solved ? significantText(equation->WorstResidualX, 6) : "-"});
    const std::string why = calibration::rejection(*equation);
    if (why.empty()) continue;
    const std::string help = advice(fit, *equation);
    const std::string stop = why.ends_with('.') ? "" : ".";
    reasons += wrapped(equation->Name + ": " + why + stop +
                           (help.empty() ? "" : " What would help: " + help + "."),
                       2);
  }
  return table.text() + reasons + warningLines(fit);
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
                   {"R2", Align::right},
                   {"Adjusted", Align::right},
                   {"Worst %", Align::right},
                   {"Band", Align::left},
                   {"Curve", Align::left}});
  for (const CheckedFit& checked : fits) {
    const calibration::Fit& fit = checked.fit;
    if (!checked.isStored) {
      table.addRow({fit.series, "none", "-", "-", "-", "-", "not stored"});
      continue;
    }
    const EquationOutcome& chosen = fit.chosen();
    table.addRow({fit.series, chosen.Name, determination(chosen, chosen.Statistics.RSquared),
                  determination(chosen, chosen.Statistics.AdjustedRSquared),
                  percentText(chosen.WorstResidualRatio * 100), "pass",
                  counted(fit.curve.size(), "point")});
  }
  return table.text();
}

}  // namespace pelmora::cli
