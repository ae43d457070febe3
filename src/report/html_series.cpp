// SPDX-License-Identifier: MIT
#include "report/html_series.h"

#include "report/html_points.h"
#include "report/html_table.h"
#include "report/markup.h"
#include "report/plot_legend.h"
#include "base/readable_number.h"
#include "report/series_plot.h"
#include "report/verdict_words.h"

#include <pelmora/calibration/choice.h>

#include <algorithm>

namespace pelmora::report {
namespace {

constexpr std::size_t mostRejected = 5;  // equations of a ranking
constexpr std::size_t onePage = 100;     // points of a predicted table that fit on a printed page
constexpr int determinationDigits = 6, valueDigits = 7, errorDigits = 3;

std::string remarks(const SeriesReport& series) {
  if (series.remarks.empty()) return "<p class=\"fine\">No warnings.</p>\n";
  std::string html = "<div class=\"warn\" role=\"note\"><h3>" +
                     std::string(series.remarks.size() == 1 ? "Warning" : "Warnings") + "</h3><ul>";
  for (const Remark& remark : series.remarks) html += "<li>" + escaped(remark.text);
  return html + "</ul></div>\n";
}

std::string settings(const SeriesReport& series) {
  const CurveSettings& used = series.settings;
  std::string text = "Band \u00B1" + significantText(used.BandPercent, 6) + " %, " +
                     std::to_string(used.Points) + " points, ";
  const auto end = [](const std::optional<double>& value, const char* otherwise) {
    return value ? significantText(*value, 6) : std::string(otherwise);
  };
  text += used.Min || used.Max
              ? "Roshko " + end(used.Min, "lowest") + " to " + end(used.Max, "highest")
              : "over the merged points";
  if (used.RatioCurve) text += ", rotor ratio";
  if (used.Inverted) text += ", merged from the other end";
  if (used.IgnoreResiduals) text += ", without the residual test";
  if (used.FitMin || used.FitMax)
    text += ", fitted to the points of Roshko " + end(used.FitMin, "lowest") + " to " +
            end(used.FitMax, "highest");
  if (used.KeepsOverlap) text += ", merged without a cut";
  if (used.MergeBandPercent)
    text += ", merged within " + significantText(*used.MergeBandPercent, 4) + " %";
  text += used.Equations ? ", equations of a file" : ", built-in equations";
  text += ", chosen by the rule " + (used.Choice.empty() ? "adjusted-r2" : used.Choice);
  if (series.settingsAreKept)
    text += ". Fitted " + used.FittedAt + " with version " + used.SoftwareVersion + ".";
  else if (!series.curve.empty())
    text +=
        ". These settings were not kept with the curve; they are taken from its report or are the "
        "defaults.";
  else
    text += ".";
  return "<p class=\"fine\">" + escaped(text) + "</p>\n";
}

std::string plot(const SeriesReport& series) {
  std::string legend;
  for (const LegendEntry& entry : legendOf(series)) {
    legend += "<li><span class=\"key\" data-key=\"" + entry.key +
              "\"><svg viewBox=\"0 0 24 12\" aria-hidden=\"true\">" + legendMark(entry) + "</svg>" +
              escaped(entry.label) + "</span>";
  }
  const std::string name = escaped(series.name);
  return "<figure class=\"fig\"><ul class=\"legend\">" + legend + "</ul>\n<div class=\"box\">" +
         seriesPlot(series) +
         "<div class=\"live\" tabindex=\"0\" role=\"application\" aria-label=\"Plot of " + name +
         ": left and right arrow step through the points, plus and minus zoom, Escape shows "
         "all\"></div></div>\n"
         "<p class=\"read\" role=\"status\"></p>\n"
         "<div class=\"tools\"><button type=\"button\" value=\".5\">Zoom in</button>"
         "<button type=\"button\" value=\"2\">Zoom out</button><button type=\"button\" "
         "value=\"reset\">Show all</button>"
         "<span class=\"fine\">Drag to zoom, double-click to show all; point at a mark or use the "
         "arrow keys to read it.</span></div>"
         "<figcaption>" +
         std::string(
             series.curve.empty()
                 ? "Points by raw part."
                 : "Points, curve and band; below, the residuals: distance of each point from the "
                   "curve, which is "
                   "read linearly between the points of its table, in per cent of the curve.") +
         "</figcaption></figure>\n";
}

std::string equations(const SeriesReport& series) {
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
    // By the rule 'trusted', equations that fail in one way come one after the other, nearest
    // first.
    const bool isSaid = isTrusted && equation.Verdict == last;
    if (!why.empty() && !isSaid) table.addNote(withShortNumbers(why));
    last = equation.Verdict;
  }
  if (rejected > mostRejected)
    table.addNote(std::to_string(rejected - mostRejected) +
                  " more that were rejected are in the report as CSV, JSON or a workbook");
  return "<h3>Equations</h3>\n" + table.take();
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
    table.addRow({parameter.Name, exactNumber(parameter.Value),
                  significantText(parameter.StandardError, 6),
                  parameter.Value == 0
                      ? "-"
                      : significantText(std::abs(parameter.StandardError / parameter.Value) * 100,
                                        errorDigits)});
  }
  const FitStatistics& statistics = equation.Statistics;
  return "<div class=keep><h3>Parameters of " + escaped(equation.Name) +
         "</h3>\n<p><code>y = " + escaped(equation.Expression) +
         "</code></p>\n<p class=\"fine\">n = " + std::to_string(statistics.Observations) +
         ", s = " + significantText(statistics.ResidualStandardError, 6) +
         ", residual sum of squares " + significantText(statistics.ResidualSumOfSquares, 6) +
         (equation.Bic ? ", BIC " + fixedText(*equation.Bic, 2) : "") + ".</p>\n" + table.take() +
         "</div>\n";
}

std::string halfOfTable(const SeriesReport& series, std::size_t begin, std::size_t end,
                        bool hasBands) {
  std::vector<HtmlColumn> columns{
      {"No.", true}, {"Roshko", true}, {series.settings.RatioCurve ? "Ratio" : "Strouhal", true}};
  if (hasBands) columns.insert(columns.end(), {{"\u00B1 conf.", true}, {"\u00B1 pred.", true}});
  HtmlTable table(
      "Predicted table, points " + std::to_string(begin + 1) + " to " + std::to_string(end),
      columns, "points predicted");
  for (std::size_t i = begin; i < end; ++i) {
    const CurvePoint& point = series.curve[i];
    std::vector<std::string> cells{std::to_string(i + 1), alignedText(point.roshko, valueDigits),
                                   alignedText(point.strouhal, valueDigits)};
    if (hasBands) {
      for (const auto& half : {point.confidence, point.prediction})
        cells.push_back(half ? significantText(*half, errorDigits) : "-");
    }
    table.addRow(cells);
  }
  return table.take();
}

std::string predictedTable(const SeriesReport& series) {
  if (series.curve.empty()) return {};
  const bool hasBands =
      std::any_of(series.curve.begin(), series.curve.end(),
                  [](const CurvePoint& p) { return p.confidence || p.prediction; });
  const std::size_t half = (series.curve.size() + 1) / 2;
  return "<h3>Predicted table</h3>\n" +
         std::string(hasBands ? "<p class=\"fine\">With the half widths of the 95 % confidence "
                                "band of the curve and of the "
                                "95 % prediction band of a further measurement.</p>\n"
                              : "") +
         "<div class=\"pair" + std::string(series.curve.size() <= onePage ? " keep" : "") + "\">" +
         halfOfTable(series, 0, half, hasBands) +
         (half < series.curve.size() ? halfOfTable(series, half, series.curve.size(), hasBands)
                                     : "") +
         "</div>\n";
}

std::string comparison(const SeriesReport& series) {
  if (!series.previous) return {};
  const PreviousCurve& previous = *series.previous;
  const std::string title = "<h3>Since calibration " + std::to_string(previous.reCalID) +
                            (previous.date.empty() ? "" : " of " + escaped(previous.date)) +
                            "</h3>\n";
  if (previous.shifts.empty()) return title + "<p>The two curves have no range in common.</p>\n";
  const auto at = [](const Shift& shift) {
    return percentText(shift.percent) + " % at Roshko " + significantText(shift.roshko, 6);
  };
  return title + "<p>Over the common range, Roshko " +
         significantText(previous.shifts.front().roshko, 6) + " to " +
         significantText(previous.shifts.back().roshko, 6) + ", the curve shifted by " +
         percentText(previous.meanPercent) + " % on average (over ln Roshko), from " +
         at(previous.lowest) + " to " + at(previous.highest) + ".</p>\n<figure>" +
         comparisonPlot(series) + "</figure>\n";
}

}  // namespace

std::string htmlSeries(const SeriesReport& series, const std::string& id) {
  std::string html = "<section class=\"series\" id=\"" + id + "\">\n<h2>" + escaped(series.name) +
                     "</h2>\n" + remarks(series) + settings(series) + htmlLeftOutPoints(series) +
                     plot(series) + equations(series) + parameters(series) + comparison(series) +
                     predictedTable(series);
  if (!series.storedText.empty()) {
    html += "<details><summary>Stored report</summary><pre>" + escaped(series.storedText) +
            "</pre></details>\n";
  }
  return html + "<p class=\"fine\">SHA-256 of the raw points: <code>" + series.rawDataHash +
         "</code></p>\n</section>\n";
}

}  // namespace pelmora::report
