// SPDX-License-Identifier: MIT
#include "report/drift_page.h"

#include "base/readable_number.h"
#include "report/drift_rows.h"
#include "report/html_table.h"
#include "report/markup.h"
#include "report/plot_scale.h"
#include "report/svg_report.h"

#include <cmath>
#include <utility>
#include <vector>

namespace pelmora::report {
namespace {

using calibration::Drift;
using calibration::DriftPlace;
using calibration::DriftValue;

constexpr double driftWidth = 720, driftHeight = 150, driftLeft = 70, driftRight = 16;
constexpr double driftHead = 40, driftGap = 42;
constexpr const char *ink = "#1f2933", *soft = "#5f6c7b", *grid = "#d9dee4", *limit = "#b3452c";

std::string line(double x1, double y1, double x2, double y2, const char* colour,
                 const std::string& more = "") {
  return "<line x1=\"" + coordinate(x1) + "\" y1=\"" + coordinate(y1) + "\" x2=\"" +
         coordinate(x2) + "\" y2=\"" + coordinate(y2) + "\" stroke=\"" + colour + "\"" + more +
         "/>";
}

std::string label(double x, double y, const std::string& content, const char* anchor,
                  const char* colour = soft, int size = 12) {
  return "<text x=\"" + coordinate(x) + "\" y=\"" + coordinate(y) + "\" text-anchor=\"" + anchor +
         "\" font-size=\"" + std::to_string(size) + "\" fill=\"" + colour + "\">" +
         escaped(content) + "</text>";
}

// The times of the calibrations, if all are known and rise; else their numbers.
std::vector<double> timesOf(const Drift& drift) {
  std::vector<double> years, numbers;
  bool areDated = true;
  for (const auto& each : drift.calibrations) {
    numbers.push_back(static_cast<double>(numbers.size()));
    areDated = areDated && each.years && (years.empty() || *each.years > years.back());
    if (areDated) years.push_back(*each.years);
  }
  return areDated ? years : numbers;
}

std::string nameOf(const calibration::DatedCurve& each) {
  return each.date.empty() ? "no. " + std::to_string(each.calibration)
                           : "no. " + std::to_string(each.calibration) + ", " + each.date;
}

double barOf(const DriftValue& value) {
  return value.sinceFirst ? value.sinceFirst->uncertaintyPercent : 0;
}

std::string panel(const Drift& drift, const DriftPlace& place, const std::vector<double>& times,
                  double top, bool isLast) {
  std::vector<double> values{0};
  for (const DriftValue& value : place.values) {
    values.push_back(value.percent + barOf(value));
    values.push_back(value.percent - barOf(value));
  }
  if (place.chart) values.insert(values.end(), {place.chart->low, place.chart->high});
  const PlotScale y = PlotScale::linear(values, 0.06), x = PlotScale::linear(times, 0.08);
  const double end = driftWidth - driftRight;
  const auto atY = [&](double value) { return top + driftHeight * (1 - y.share(value)); };
  const auto atX = [&](double time) { return driftLeft + (end - driftLeft) * x.share(time); };
  std::string svg =
      label(driftLeft, top - 8, "Roshko " + significantText(place.roshko, 5), "start", ink);
  for (const Tick& tick : y.ticks(5)) {
    svg += line(driftLeft, atY(tick.value), end, atY(tick.value), grid);
    if (!tick.label.empty()) svg += label(driftLeft - 6, atY(tick.value) + 4, tick.label, "end");
  }
  if (place.chart) {
    const auto& chart = *place.chart;
    svg += line(driftLeft, atY(chart.centre), end, atY(chart.centre), soft);
    for (const double at : {chart.low, chart.high})
      svg += line(driftLeft, atY(at), end, atY(at), limit, " stroke-dasharray=\"6 4\"");
  }
  std::string path;
  for (std::size_t i = 0; i < place.values.size(); ++i) {
    const DriftValue& value = place.values[i];
    const double cx = atX(times[i]), cy = atY(value.percent);
    path += (i == 0 ? "M" : "L") + coordinate(cx) + " " + coordinate(cy);
    if (barOf(value) > 0) {
      svg +=
          line(cx, atY(value.percent - barOf(value)), cx, atY(value.percent + barOf(value)), ink);
    }
    const bool isMarked = value.sinceFirst && value.sinceFirst->isSignificant();
    svg += "<circle cx=\"" + coordinate(cx) + "\" cy=\"" + coordinate(cy) + "\" r=\"4\" fill=\"" +
           (isMarked ? limit : ink) + "\"><title>" +
           escaped(nameOf(drift.calibrations[i]) + ": " + percentText(value.percent) + " %") +
           "</title></circle>";
    if (isLast) svg += label(cx, top + driftHeight + 18, nameOf(drift.calibrations[i]), "middle");
  }
  return svg + "<path d=\"" + path + "\" fill=\"none\" stroke=\"" + ink + "\"/>\n";
}

HtmlTable valueTable(const Drift& drift, const DriftPlace& place) {
  HtmlTable table("Roshko " + significantText(place.roshko, 6), {{"Calibration"},
                                                                 {"Strouhal", true},
                                                                 {"U %", true},
                                                                 {"Since first %", true},
                                                                 {"Since previous %", true},
                                                                 {"U of it %", true},
                                                                 {"En", true},
                                                                 {"Verdict"}});
  for (std::size_t i = 0; i < place.values.size(); ++i)
    table.addRow(driftCells(drift, place, i, {"significant", "beyond the control limits"}));
  if (const std::string limits = controlLimitsText(place); !limits.empty()) table.addNote(limits);
  return table;
}

// The picture has colours of its own, as a file for people who paste it somewhere. On the page it
// takes those of the page.
std::string pictureColours() {
  std::string css = "svg rect{fill:var(--paper)}";
  for (const auto& [colour, name] : {std::pair(ink, "ink"), std::pair(soft, "soft"),
                                     std::pair(grid, "grid"), std::pair(limit, "band")}) {
    for (const char* property : {"fill", "stroke"}) {
      css += std::string("svg [") + property + "=\"" + colour + "\"]{" + property + ":var(--" +
             name + ")}";
    }
  }
  return css;
}

std::string driftStyle() {
  return ":root{color-scheme:light dark;" + lightColours() +
         "}@media screen and (prefers-color-scheme:dark){:root{" + darkColours() +
         "}}body{font:15px/1.5 system-ui,sans-serif;max-width:62em;margin:1.5em auto;padding:0 1em;"
         "color:var(--ink);background:var(--paper)}h1{line-height:1.2}h2{font-size:1.1em;"
         "margin:1.4em 0 0}table{border-collapse:collapse;margin:.4em 0 1em}td,th{padding:.2em "
         ".6em;border-bottom:1px solid var(--grid);text-align:right;white-space:nowrap}.t,"
         "th[scope=row],.why td{text-align:left}.why "
         "td{white-space:normal}div{overflow-x:auto}svg{max-width:100%}"
         // On a phone the picture scrolls, so that its texts stay readable.
         "@media screen and (max-width:40em){svg{max-width:none;width:42em}}" +
         pictureColours();
}

}  // namespace

std::string driftPicture(const Drift& drift, const std::string& title) {
  const double height =
      driftHead + static_cast<double>(drift.places.size()) * (driftHeight + driftGap) + 10;
  std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " +
                    coordinate(driftWidth) + " " + coordinate(height) +
                    "\" font-family=\"sans-serif\" role=\"img\">\n" +
                    "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>" +
                    label(driftLeft, 20, "Change of " + title + " since the first calibration, %",
                          "start", ink, 14);
  const std::vector<double> times = timesOf(drift);
  double top = driftHead + 16;
  for (std::size_t i = 0; i < drift.places.size(); ++i, top += driftHeight + driftGap)
    svg += panel(drift, drift.places[i], times, top, i + 1 == drift.places.size());
  return svg + "</svg>\n";
}

std::string driftPage(const Drift& drift, const std::string& title) {
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><meta name=\"viewport\" "
      "content=\"width=device-width,initial-scale=1\"><title>Drift: " +
      escaped(title) + "</title><style>" + driftStyle() + "</style></head><body>\n<h1>Drift of " +
      escaped(title) + "</h1>\n<div tabindex=\"0\" role=\"group\" aria-label=\"Plot\">" +
      driftPicture(drift, title) +
      "</div><p>Bars: the expanded uncertainty of the shift since the first calibration, without "
      "what the stand does to both alike. Broken lines: control limits, three standard deviations "
      "about the mean. Red: a significant shift.</p>\n";
  for (const DriftPlace& place : drift.places) {
    html += "<h2>Roshko " + significantText(place.roshko, 6) + "</h2>\n" +
            valueTable(drift, place).take();
  }
  if (drift.intervalYears) {
    html += "<p><strong>Recommended interval: " + significantText(*drift.intervalYears, 2) +
            " years.</strong> " + escaped(drift.assumptions()) + "</p>\n";
  } else {
    html += "<p>No interval is recommended: " + escaped(drift.whyNoInterval) + ".</p>\n";
  }
  return html + "</body></html>\n";
}

}  // namespace pelmora::report
