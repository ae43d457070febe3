// SPDX-License-Identifier: MIT
#include "report/html_equations.h"

#include "base/readable_number.h"
#include "report/html_table.h"
#include "report/markup.h"
#include "report/printed_values.h"
#include "report/verdict_words.h"

#include <pelmora/calibration/choice.h>

#include <algorithm>
#include <cmath>

namespace pelmora::report {
namespace {

constexpr std::size_t mostRejected = 5;  // equations of a ranking
constexpr int determinationDigits = 6, percentDigits = 3;

std::string ranking(const SeriesReport& series) {
  if (series.equations.empty()) return {};
  HtmlTable table("Ranking of the equations",
                  {{"Equation", false},
                   {"Verdict", false},
                   {"Adj. R\u00B2", true},
                   {"R\u00B2", true},
                   {"s", true},
                   {"AICc", true},
                   {"Worst %", true},
                   {"at Roshko", true}},
                  "keep");
  const bool isTrusted =
      series.settings.Choice == calibration::choiceKey(calibration::Choice::trusted);
  std::size_t rejected = 0;
  EquationVerdict last = EquationVerdict::chosen;
  // These numbers are of each equation's own curve at the merged points, not of the stored table.
  for (const RankedEquation& ranked : series.equations) {
    const EquationOutcome& equation = ranked.outcome;
    const std::string why = rejection(equation);
    if (!why.empty() && ++rejected > mostRejected) continue;
    const bool isSolved = hasSolution(equation);
    const auto number = [&](const std::string& text) { return isSolved ? text : std::string("-"); };
    table.addRow({std::to_string(ranked.rank) + ". " + equation.Name, verdictText(equation.Verdict),
                  number(fixedText(equation.Statistics.AdjustedRSquared, determinationDigits)),
                  number(fixedText(equation.Statistics.RSquared, determinationDigits)),
                  number(significantText(equation.Statistics.ResidualStandardError, 4)),
                  equation.Aicc ? fixedText(*equation.Aicc, 2) : "-",
                  number(percentText(equation.WorstResidualRatio * 100)),
                  number(significantText(equation.WorstResidualX, 6))},
                 equation.Verdict == EquationVerdict::chosen ? "best" : "");
    // By the rule 'trusted', equations that fail in the same way follow each other, the nearest
    // first. Its reason applies to all of them.
    const bool isSaid = isTrusted && equation.Verdict == last;
    if (!why.empty() && !isSaid) table.addNote(withShortNumbers(why));
    last = equation.Verdict;
  }
  if (rejected > mostRejected)
    table.addNote(std::to_string(rejected - mostRejected) +
                  " more that were rejected are in the report as CSV, JSON or a workbook");
  return "<h3>Equations</h3>\n" + table.take() +
         "<p class=\"fine\">Worst: the largest residual of the equation itself at a merged point; "
         "the results above speak of the stored table.</p>\n";
}

// Folded, because even the parameters of a good fit are strongly correlated.
std::string correlations(const EquationOutcome& equation) {
  const std::size_t p = equation.Parameters.size();
  if (p < 2 || equation.Covariance.size() != p * p) return {};
  std::vector<HtmlColumn> columns{{"Parameter", false}};
  for (const FitParameter& parameter : equation.Parameters)
    columns.push_back({parameter.Name, true});
  HtmlTable table("Correlation of the parameters", columns, "points");
  const auto covariance = [&](std::size_t i, std::size_t j) {
    return equation.Covariance[i * p + j];
  };
  for (std::size_t i = 0; i < p; ++i) {
    std::vector<std::string> cells{equation.Parameters[i].Name};
    for (std::size_t j = 0; j <= i; ++j)
      cells.push_back(
          fixedText(covariance(i, j) / std::sqrt(covariance(i, i) * covariance(j, j)), 4));
    cells.resize(p + 1);
    table.addRow(cells);
  }
  return "<details><summary>Correlation of the parameters</summary>" + table.take() +
         "</details>\n";
}

std::string parameters(const SeriesReport& series) {
  const auto chosen = std::find_if(
      series.equations.begin(), series.equations.end(),
      [](const RankedEquation& e) { return e.outcome.Verdict == EquationVerdict::chosen; });
  if (chosen == series.equations.end()) return {};
  const EquationOutcome& equation = chosen->outcome;
  HtmlTable table(
      "Parameters of " + equation.Name,
      {{"Parameter", false}, {"Value", true}, {"Standard error", true}, {"of the value, %", true}},
      "keep points");
  for (const FitParameter& parameter : equation.Parameters) {
    table.addRow({parameter.Name, printedParameter(parameter.Value, parameter.StandardError),
                  significantText(parameter.StandardError, 6),
                  parameter.Value == 0
                      ? "-"
                      : significantText(std::abs(parameter.StandardError / parameter.Value) * 100,
                                        percentDigits)});
  }
  const FitStatistics& statistics = equation.Statistics;
  return "<div class=keep><h3>Parameters of " + escaped(equation.Name) +
         "</h3>\n<p><code>y = " + escaped(equation.Expression) +
         "</code></p>\n<p class=\"fine\">n = " + std::to_string(statistics.Observations) +
         ", s = " + significantText(statistics.ResidualStandardError, 6) +
         ", residual sum of squares " + significantText(statistics.ResidualSumOfSquares, 6) +
         (equation.Bic ? ", BIC " + fixedText(*equation.Bic, 2) : "") + ".</p>\n" + table.take() +
         "<p class=\"fine\">Parameters are rounded to the second digit of their standard errors; "
         "the JSON has all digits.</p>\n</div>\n" +
         correlations(equation);
}

}  // namespace

std::string htmlEquations(const SeriesReport& series) {
  return ranking(series) + parameters(series);
}

}  // namespace pelmora::report
