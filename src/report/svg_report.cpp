// SPDX-License-Identifier: MIT
#include "report/svg_report.h"

#include "report/markup.h"
#include "report/plot_legend.h"
#include "report/series_plot.h"

namespace pelmora::report {
namespace {

constexpr int headHeight = 34, titleHeight = 26, legendRow = 18, gapBelow = 24;
constexpr std::size_t legendColumns = 2;
constexpr int legendColumnWidth = 350;

std::string text(const std::string& cssClass, int x, int y, const std::string& content) {
  return "<text class=\"" + cssClass + "\" x=\"" + std::to_string(x) + "\" y=\"" +
         std::to_string(y) + "\">" + escaped(content) + "</text>\n";
}

std::string moved(int x, int y, const std::string& content) {
  return "<g transform=\"translate(" + std::to_string(x) + "," + std::to_string(y) + ")\">" +
         content + "</g>\n";
}

// Adds a title, the legend and the plot of a series below `y`, which then stands below them.
std::string block(const SeriesReport& series, int& y) {
  std::string svg = text("title", 12, y + 16, series.name);
  y += titleHeight;
  const auto legend = legendOf(series);
  for (std::size_t i = 0; i < legend.size(); ++i) {
    const int x = 12 + static_cast<int>(i % legendColumns) * legendColumnWidth;
    const int row = y + static_cast<int>(i / legendColumns) * legendRow;
    svg += moved(x, row, legendMark(legend[i])) + text("legend", x + 30, row + 10, legend[i].label);
  }
  y += static_cast<int>((legend.size() + legendColumns - 1) / legendColumns) * legendRow + 6;
  svg += moved(0, y, seriesPlot(series));
  y += seriesPlotHeight;
  if (const std::string shift = comparisonPlot(series); !shift.empty()) {
    svg += text(
        "legend", 12, y + 12,
        "Shift since calibration " + std::to_string(series.previous->calibration) + ", per cent");
    svg += moved(0, y + 16, shift);
    y += 16 + comparisonPlotHeight;
  }
  y += gapBelow;
  return svg;
}

// The points of a plain fit belong to no meter.
std::string headOf(const Report& report) {
  if (report.meter.serial.empty()) return report.createdAt;
  return "Meter " + report.meter.serial + ", calibration " +
         std::to_string(report.meter.calibration) + ", " + report.createdAt;
}

}  // namespace

std::string plotStyle() {
  return "svg text{font:12px system-ui,-apple-system,'Segoe UI','DejaVu "
         "Sans',sans-serif;fill:var(--ink)}"
         ".xl{text-anchor:middle}.yl{text-anchor:end}.at{text-anchor:middle;fill:var(--soft)}"
         ".grid{stroke:var(--grid);fill:none}.axis{stroke:var(--axis);fill:none}"
         ".dots{fill:none;stroke:none}.raw1{marker:url(#m1)}.raw2{marker:url(#m2)}.raw3{marker:url("
         "#m3)}"
         ".raw4{marker:url(#m4)}.cut1{marker:url(#c1)}.cut2{marker:url(#c2)}.cut3{marker:url(#c3)}"
         ".cut4{marker:url(#c4)}.out1{marker:url(#o1)}.out2{marker:url(#o2)}"
         ".out3{marker:url(#o3)}.out4{marker:url(#o4)}.dis1{marker:url(#d1)}.dis2{marker:url(#d2)}"
         ".dis3{marker:url(#d3)}.dis4{marker:url(#d4)}.merged{marker:url(#mm)}"
         ".line{fill:none;stroke-width:1.5;stroke-linejoin:round}.curve,.shift{stroke:var(--ink)}"
         ".attempt{stroke:var(--ink);stroke-dasharray:2 "
         "3}.band{stroke:var(--band);stroke-dasharray:6 "
         "4;stroke-width:1.25}.zero{stroke:var(--axis)}"
         ".conf{fill:var(--ink);fill-opacity:.22}.pred{fill:var(--ink);fill-opacity:.09}"
         ".k1,.k2,.k3,.k4{fill:none;stroke-width:1.6}.k1{stroke:var(--p1)}.k2{stroke:var(--p2)}"
         ".k3{stroke:var(--p3)}.k4{stroke:var(--p4)}.km{fill:var(--ink)}.note{text-anchor:end;fill:"
         "var(--soft)}";
}

// Series colours: four hues that stay apart for the common colour blindnesses, each at least 4.5 to
// 1 against its background.
std::string lightColours() {
  return "--paper:#fff;--ink:#16202c;--soft:#4a5666;--grid:#e3e7ec;--axis:#7a8694;--band:#b3261e;"
         "--p1:#0b62a8;--p2:#b04a00;--p3:#00736b;--p4:#8a3a8f;";
}
std::string darkColours() {
  return "--paper:#12171e;--ink:#e8edf3;--soft:#aab5c2;--grid:#2a323d;--axis:#8a96a4;--band:#"
         "ff8f85;"
         "--p1:#6db8ff;--p2:#ffab66;--p3:#4fd3c4;--p4:#dd9fe6;";
}

std::string svgReport(const Report& report) {
  int y = headHeight;
  std::string blocks;
  for (const SeriesReport& series : report.series) {
    report.requireGoOn();
    blocks += block(series, y);
  }
  const std::string size = std::to_string(plotWidth) + "\" height=\"" + std::to_string(y);
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
         size + "\" viewBox=\"0 0 " + std::to_string(plotWidth) + " " + std::to_string(y) +
         "\">\n<style>svg{" + lightColours() + "}" + plotStyle() +
         "svg .title{font-size:15px;font-weight:600}</style>\n" + plotDefinitions() +
         "<rect width=\"" + size + "\" fill=\"#fff\"/>\n" + text("legend", 12, 20, headOf(report)) +
         blocks + "</svg>\n";
}

}  // namespace pelmora::report
