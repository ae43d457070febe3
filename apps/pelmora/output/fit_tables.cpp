// SPDX-License-Identifier: MIT
#include "apps/pelmora/fit_advice.h"
#include "apps/pelmora/output/fit_output.h"
#include "apps/pelmora/output/text_table.h"
#include "report/verdict_words.h"

namespace pelmora::cli {
namespace {

using Align = TextTable::Align;
using report::hasSolution;
using report::verdictText;

constexpr int determinationDigits = 6;

std::string determination(const EquationOutcome& equation, double value) {
  return hasSolution(equation) ? fixedText(value, determinationDigits) : "-";
}

std::string stand(std::int32_t number) { return number < 0 ? "-" : std::to_string(number); }

std::string joined(const std::vector<std::string>& texts) {
  std::string result;
  for (const std::string& text : texts) result += (result.empty() ? "" : ", ") + text;
  return result.empty() ? "-" : result;
}

}  // namespace

std::string equationTable(const SeriesFit& fit) {
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
    const std::string why = rejection(*equation);
    if (why.empty()) continue;
    const std::string help = advice(fit, *equation);
    const std::string stop = why.ends_with('.') ? "" : ".";
    reasons += wrapped(equation->Name + ": " + why + stop +
                           (help.empty() ? "" : " What would help: " + help + "."),
                       2);
  }
  return table.text() + reasons + warningLines(fit);
}

std::string warningLines(const SeriesFit& fit) {
  std::string lines;
  for (const CurveWarning& warning : fit.outcome.Warnings) {
    lines += wrapped("warning: " + withShortNumbers(warning.Text), 2);
  }
  return lines;
}

std::string chosenTable(const std::vector<SeriesFit>& fits) {
  TextTable table({{"Series", Align::left},
                   {"Equation", Align::left},
                   {"R2", Align::right},
                   {"Adjusted", Align::right},
                   {"Worst %", Align::right},
                   {"Band", Align::left},
                   {"Curve", Align::left}});
  for (const SeriesFit& fit : fits) {
    if (!fit.outcome.Chosen || !fit.isStored) {
      table.addRow({fit.series, "none", "-", "-", "-", "-", "not stored"});
      continue;
    }
    const EquationOutcome& chosen = fit.outcome.Equations[*fit.outcome.Chosen];
    table.addRow({fit.series, chosen.Name, determination(chosen, chosen.Statistics.RSquared),
                  determination(chosen, chosen.Statistics.AdjustedRSquared),
                  percentText(chosen.WorstResidualRatio * 100), "pass",
                  counted(fit.curve.size(), "point")});
  }
  return table.text();
}

std::string importHead(const CurveSession& session, const ImportOutcome& import) {
  return wrapped("Meter " + import.meter.SerialNumber + ", calibration " +
                     std::to_string(import.meter.ReCalID) + (import.meterIsNew ? " (new)" : "") +
                     ", in " + session.path() + ".",
                 0) +
         "\n";
}

std::string importTable(const ImportOutcome& import) {
  TextTable runs({{"Part", Align::right},
                  {"Fluid", Align::left},
                  {"Jobs", Align::left},
                  {"Operator", Align::left},
                  {"Date", Align::left},
                  {"Stand", Align::right},
                  {"Points", Align::right}});
  for (std::size_t k = 0; k < import.setups.size(); ++k) {
    const CalSetupInfo& setup = import.setups[k];
    runs.addRow({k < 4 ? std::to_string(k + 1) : "-", setup.Fluid, joined(setup.JobRecordIDs),
                 setup.Operator, setup.DateTaken, stand(setup.Stand),
                 std::to_string(setup.Points)});
  }
  std::string text = runs.text();
  if (!import.series.empty()) {
    TextTable series({{"Series", Align::left},
                      {"Part 1", Align::right},
                      {"Part 2", Align::right},
                      {"Part 3", Align::right},
                      {"Part 4", Align::right}});
    for (const DerivedSeries& derived : import.series) {
      std::vector<std::string> row{derived.name};
      for (const std::size_t points : derived.points)
        row.push_back(derived.trouble ? "?" : points == 0 ? "-" : std::to_string(points));
      series.addRow(row);
    }
    text += "\n" + series.text();
  }
  for (const std::string& note : import.notes) text += wrapped("note: " + note, 0);
  return text;
}

}  // namespace pelmora::cli
