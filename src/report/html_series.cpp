// SPDX-License-Identifier: MIT
#include "report/html_series.h"

#include "base/readable_number.h"
#include "report/html_budget.h"
#include "report/html_equations.h"
#include "report/html_points.h"
#include "report/html_table.h"
#include "report/markup.h"
#include "report/paper_picture.h"
#include "report/plot_legend.h"
#include "report/printed_values.h"
#include "report/report_details.h"
#include "report/series_plot.h"
#include "report/signature_words.h"

#include <algorithm>

namespace pelmora::report {
namespace {

constexpr std::size_t onePage = 100;  // points of a predicted table that fit on a printed page
constexpr int halfWidthDigits = 3;

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

std::string signatures(const SeriesReport& series) {
  std::string html;
  for (const Signature& signature : series.signatures) {
    html += "<p><b>" + signatureState(signature) + "</b> " + escaped(signedBy(signature)) +
            ". <span class=\"fine\">Fingerprint <code>" + escaped(signature.entry.fingerprint) +
            "</code></span></p>\n";
  }
  return html;
}

std::string legend(const SeriesReport& series, const PageOptions& options) {
  std::string html;
  for (const LegendEntry& entry : legendOf(series)) {
    const std::string mark =
        "<svg width=\"24\" height=\"12\" viewBox=\"0 0 24 12\" aria-hidden=\"true\">" +
        legendMark(entry) + "</svg>";
    html += "<li><span class=\"key\" data-key=\"" + entry.key + "\">" +
            (options.isPaper ? paperPicture(mark) : mark) + escaped(entry.label) + "</span>";
  }
  return "<ul class=\"legend\">" + html + "</ul>\n";
}

// For the page's script alone: without it they do nothing.
std::string controls(const SeriesReport& series) {
  return "<div class=\"live\" tabindex=\"0\" role=\"application\" aria-label=\"Plot of " +
         escaped(series.name) +
         ": left and right arrow step through the points, plus and minus zoom, Escape shows "
         "all\"></div>";
}
std::string tools() {
  return "<p class=\"read\" role=\"status\"></p>\n"
         "<div class=\"tools\"><button type=\"button\" value=\".5\">Zoom in</button>"
         "<button type=\"button\" value=\"2\">Zoom out</button><button type=\"button\" "
         "value=\"reset\">Show all</button>"
         "<span class=\"fine\">Drag to zoom, double-click to show all; point at a mark or use the "
         "arrow keys to read it.</span></div>";
}

std::string caption(const SeriesReport& series) {
  if (!series.curve.empty()) {
    return "Points, curve and band; below, the residuals: distance of each point from the curve, "
           "which is read linearly between the points of its table, in per cent of the curve.";
  }
  if (!series.attempt) return "Points by raw part.";
  const Attempt& attempt = *series.attempt;
  return "Points and the best attempt, " + attempt.equation +
         (attempt.isAccepted ? ", which is not stored" : ", which was not accepted") +
         (attempt.reason.empty() ? "" : " (" + attempt.reason + ")") +
         "; below, their distance from it in per cent.";
}

// Which columns of the predicted table have anything to show.
struct TableColumns {
  bool uncertainty = false, factor = false, bands = false;
};

TableColumns tableColumns(const SeriesReport& series) {
  TableColumns shown;
  const UncertaintyStatement& statement = series.uncertainty;
  shown.uncertainty = statement.isStated();
  shown.factor = shown.uncertainty && printedCoverageFactor(statement.span.lowestFactor) !=
                                          printedCoverageFactor(statement.span.highestFactor);
  shown.bands = std::ranges::any_of(
      series.curve, [](const CurvePoint& p) { return p.confidence || p.prediction; });
  return shown;
}

std::string halfOfTable(const Report& report, const SeriesReport& series, std::size_t begin,
                        std::size_t end, const TableColumns& shown) {
  std::vector<HtmlColumn> columns{
      {"No.", true},
      {withUnit(report, "Roshko", "roshko-unit"), true, "x"},
      {isQuotient(series) ? "Ratio" : withUnit(report, "K", "strouhal-unit"), true, "y"}};
  if (shown.uncertainty) columns.push_back({"U", true});
  if (shown.factor) columns.push_back({"k", true});
  if (shown.bands) {
    columns.insert(columns.end(),
                   {{"\u00B1 conf.", true, "confidence"}, {"\u00B1 pred.", true, "prediction"}});
  }
  HtmlTable table(
      "Predicted table, points " + std::to_string(begin + 1) + " to " + std::to_string(end),
      columns, "points predicted");
  for (std::size_t i = begin; i < end; ++i) {
    const CurvePoint& point = series.curve[i];
    std::vector<std::string> cells{std::to_string(i + 1), printedRoshko(point.roshko),
                                   printedFactor(point.strouhal)};
    if (shown.uncertainty) {
      const StatedUncertainty& u = *series.uncertainty.curve[i];
      cells.push_back(printedUncertainty(u.expanded));
      if (shown.factor) cells.push_back(printedCoverageFactor(u.coverageFactor));
    }
    if (shown.bands) {
      for (const auto& half : {point.confidence, point.prediction})
        cells.push_back(half ? significantText(*half, halfWidthDigits) : "-");
    }
    table.addRow(cells);
  }
  return table.take();
}

std::string predictedTable(const Report& report, const SeriesReport& series) {
  if (series.curve.empty()) return {};
  const TableColumns shown = tableColumns(series);
  const std::size_t half = (series.curve.size() + 1) / 2;
  const std::string bands =
      shown.bands ? "<p class=\"fine\">With the half widths of the 95 % confidence band of the "
                    "curve and of the 95 % prediction band of a further measurement, which contain "
                    "the scatter of the points alone.</p>\n"
                  : "";
  return "<h3>Predicted table</h3>\n" + bands + "<div class=\"pair" +
         std::string(series.curve.size() <= onePage ? " keep" : "") + "\">" +
         halfOfTable(report, series, 0, half, shown) +
         (half < series.curve.size() ? halfOfTable(report, series, half, series.curve.size(), shown)
                                     : "") +
         "</div>\n";
}

std::string comparison(const SeriesReport& series, const PageOptions& options) {
  if (!series.previous) return {};
  const PreviousCurve& previous = *series.previous;
  const std::string title = "<h3>Since calibration " + std::to_string(previous.calibration) +
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
         (options.isPaper ? paperPicture(comparisonPlot(series)) : comparisonPlot(series)) +
         "</figure>\n";
}

}  // namespace

std::string htmlPicture(const SeriesReport& series, const PageOptions& options) {
  const std::string picture = seriesPlot(series);
  const std::string words = caption(series);
  return "<figure class=\"fig\">" + legend(series, options) + "<div class=\"box\">" +
         (options.isPaper ? paperPicture(picture) : picture + controls(series)) + "</div>\n" +
         (options.isPaper ? "" : tools()) + "<figcaption>" +
         escaped(options.isPaper ? series.name + ". " + words : words) + "</figcaption></figure>\n";
}

std::string htmlSeries(const Report& report, const SeriesReport& series, const std::string& id,
                       bool isFirst, const PageOptions& options) {
  std::string html =
      "<section class=\"series\" id=\"" + id + "\">\n<h2>" + escaped(series.name) + "</h2>\n" +
      remarks(series) + (options.isPaper && isFirst ? "" : htmlPicture(series, options)) +
      "<div class=\"sheet\">" + htmlPoints(report, series) + htmlFlows(report, series) +
      "</div>\n" + predictedTable(report, series) + htmlBudget(series) + htmlEquations(series) +
      comparison(series, options) + settings(series) + signatures(series);
  if (options.withStoredText && !series.storedText.empty()) {
    html += "<details><summary>Stored report</summary><pre>" + escaped(series.storedText) +
            "</pre></details>\n";
  }
  return html + "<p class=\"fine\">SHA-256 of the raw points: <code>" + series.rawDataHash +
         "</code></p>\n</section>\n";
}

}  // namespace pelmora::report
