// SPDX-License-Identifier: MIT
#include "report/series_plot.h"

#include "base/readable_number.h"
#include "report/markup.h"
#include "report/plot_panel.h"

#include <cmath>

namespace pelmora::report {
namespace {

constexpr double leftMargin = 78, rightMargin = 12, topMargin = 12;
constexpr double mainHeight = 290, panelGap = 22, deviationHeight = 140;
constexpr double comparisonHeight = 130;
constexpr double xMargin = 0.03, yMargin = 0.05;  // shares of an axis

PanelPlace placeAt(double top, double height) {
  return {leftMargin, top, plotWidth - leftMargin - rightMargin, height};
}

// The same lines and points in values of Strouhal or in per cent of the curve.
struct Drawing {
  std::vector<std::vector<PlotPoint>> kept, cut, out, distrusted;  // for each raw part
  std::vector<PlotPoint> attempt;
  std::vector<PlotPoint> merged, curve, bandAbove, bandBelow;
  std::vector<PlotPoint> confidenceAbove, confidenceBelow, predictionAbove, predictionBelow;
};

template <class YOf>
void addPoints(const SeriesReport& series, Drawing& drawing, YOf yOf) {
  for (const RawPart& part : series.parts) {
    std::vector<PlotPoint> kept, cut, out, distrusted;
    for (const MeasuredPoint& point : part.points) {
      auto& to = point.isExcluded()   ? out
                 : point.isCut()      ? cut
                 : point.isSetAside() ? distrusted
                                      : kept;
      to.push_back({point.roshko, yOf(point)});
    }
    drawing.kept.push_back(std::move(kept));
    drawing.cut.push_back(std::move(cut));
    drawing.out.push_back(std::move(out));
    drawing.distrusted.push_back(std::move(distrusted));
  }
  for (const MergedPoint& point : series.merged)
    drawing.merged.push_back({point.roshko, yOf(point)});
}

void addHalfWidths(Drawing& drawing, const CurvePoint& point, double middle, double unit) {
  const auto add = [&](const std::optional<double>& half, auto& above, auto& below) {
    if (!half) return;
    above.push_back({point.roshko, middle + *half * unit});
    below.push_back({point.roshko, middle - *half * unit});
  };
  add(point.confidence, drawing.confidenceAbove, drawing.confidenceBelow);
  add(point.prediction, drawing.predictionAbove, drawing.predictionBelow);
}

Drawing inStrouhal(const SeriesReport& series) {
  Drawing drawing;
  addPoints(series, drawing, [](const auto& point) { return point.strouhal; });
  if (series.attempt) {
    const PointArray& curve = series.attempt->curve;
    for (std::size_t i = 0; i < curve.size(); ++i)
      drawing.attempt.push_back({curve(i, 0), curve(i, 1)});
  }
  const double share = series.settings.BandPercent / 100;
  for (const CurvePoint& point : series.curve) {
    drawing.curve.push_back({point.roshko, point.strouhal});
    drawing.bandAbove.push_back({point.roshko, point.strouhal * (1 + share)});
    drawing.bandBelow.push_back({point.roshko, point.strouhal * (1 - share)});
    addHalfWidths(drawing, point, point.strouhal, 1);
  }
  return drawing;
}

Drawing inPercent(const SeriesReport& series) {
  Drawing drawing;
  addPoints(series, drawing,
            [](const auto& point) { return point.deviationPercent.value_or(std::nan("")); });
  for (const CurvePoint& point : series.curve)
    addHalfWidths(drawing, point, 0, 100 / std::fabs(point.strouhal));
  if (series.attempt) {
    const PointArray& curve = series.attempt->curve;
    drawing.attempt = {{curve(0, 0), 0}, {curve(curve.size() - 1, 0), 0}};
  }
  if (series.curve.empty()) return drawing;
  const auto level = [&](double percent) {
    return std::vector<PlotPoint>{{series.curve.front().roshko, percent},
                                  {series.curve.back().roshko, percent}};
  };
  drawing.curve = level(0);
  drawing.bandAbove = level(series.settings.BandPercent);
  drawing.bandBelow = level(-series.settings.BandPercent);
  return drawing;
}

void collect(std::vector<double>& values, const std::vector<PlotPoint>& points, std::size_t c) {
  for (const PlotPoint& point : points) values.push_back(point[c]);
}

std::vector<double> valuesOf(const Drawing& drawing, std::size_t c, bool withLeftOut) {
  std::vector<double> values;
  for (const auto& points : drawing.kept) collect(values, points, c);
  for (const auto& points : drawing.distrusted) collect(values, points, c);
  for (const auto* leftOut : {&drawing.cut, &drawing.out}) {
    for (const auto& points : *leftOut) {
      if (withLeftOut) collect(values, points, c);
    }
  }
  collect(values, drawing.attempt, c);
  collect(values, drawing.merged, c);
  collect(values, drawing.curve, c);
  for (const auto* points : {&drawing.bandAbove, &drawing.bandBelow}) collect(values, *points, c);
  return values;
}

// From the back to the front: areas, lines, points.
void draw(PlotPanel& panel, const Drawing& drawing, const std::vector<RawPart>& parts) {
  panel.drawArea("pred", drawing.predictionAbove, drawing.predictionBelow);
  panel.drawArea("conf", drawing.confidenceAbove, drawing.confidenceBelow);
  panel.drawLine("band", drawing.bandAbove);
  panel.drawLine("band", drawing.bandBelow);
  panel.drawLine("curve", drawing.curve);
  panel.drawLine("attempt", drawing.attempt);
  for (std::size_t k = 0; k < parts.size(); ++k) {
    const std::string number = std::to_string(parts[k].number);
    panel.drawMarkers("raw" + number, drawing.kept[k]);
    panel.drawMarkers("cut" + number, drawing.cut[k]);
    panel.drawMarkers("out" + number, drawing.out[k]);
    panel.drawMarkers("dis" + number, drawing.distrusted[k]);
  }
  panel.drawMarkers("merged", drawing.merged);
}

std::string opened(int height, const std::string& title) {
  const std::string width = std::to_string(plotWidth), tall = std::to_string(height);
  return "<svg class=\"plot\" width=\"" + width + "\" height=\"" + tall + "\" viewBox=\"0 0 " +
         width + " " + tall + "\" role=\"img\" aria-label=\"" + escaped(title) + "\">\n";
}

}  // namespace

std::string seriesPlot(const SeriesReport& series) {
  const Drawing above = inStrouhal(series), below = inPercent(series);
  const PlotScale x = PlotScale::logarithmic(valuesOf(above, 0, true), xMargin);
  const bool hasCurve = !series.curve.empty() || series.attempt;
  std::string svg = opened(
      hasCurve ? seriesPlotHeight : seriesPlotHeight - static_cast<int>(panelGap + deviationHeight),
      series.name + ": points" + (hasCurve ? ", fitted curve and residuals" : ""));
  PlotPanel main("strouhal", placeAt(topMargin, mainHeight), x,
                 PlotScale::linear(valuesOf(above, 1, true), yMargin));
  main.drawAxes(series.roshkoTitle, series.valueTitle, !hasCurve);
  draw(main, above, series.parts);
  svg += main.take();
  if (hasCurve) {
    PlotPanel residuals("percent", placeAt(topMargin + mainHeight + panelGap, deviationHeight), x,
                        PlotScale::linear(valuesOf(below, 1, false), yMargin));
    residuals.drawAxes(series.roshkoTitle, "Residual, %", true);
    draw(residuals, below, series.parts);
    residuals.noteHidden();
    svg += residuals.take();
  }
  return svg + "</svg>\n";
}

std::string comparisonPlot(const SeriesReport& series) {
  if (!series.previous || series.previous->shifts.empty()) return {};
  std::vector<PlotPoint> shifts;
  std::vector<double> x, y{0};
  for (const Shift& shift : series.previous->shifts) {
    shifts.push_back({shift.roshko, shift.percent});
    x.push_back(shift.roshko);
    y.push_back(shift.percent);
  }
  std::string svg = opened(comparisonPlotHeight, series.name + ": shift since calibration " +
                                                     std::to_string(series.previous->calibration));
  PlotPanel panel("shift", placeAt(topMargin, comparisonHeight), PlotScale::logarithmic(x, xMargin),
                  PlotScale::linear(y, yMargin));
  panel.drawAxes(series.roshkoTitle, "Shift, %", true);
  panel.drawLine("zero", {{x.front(), 0}, {x.back(), 0}});
  panel.drawLine("shift", shifts);
  return svg + panel.take() + "</svg>\n";
}

std::string plotDefinitions() {
  const auto marker = [](const std::string& id, const std::string& shape) {
    return "<marker id=\"" + id +
           "\" viewBox=\"-6 -6 12 12\" markerWidth=\"12\" markerHeight=\"12\" "
           "markerUnits=\"userSpaceOnUse\">" +
           shape + "</marker>\n";
  };
  std::string svg = "<defs>\n";
  const std::string shapes[]{
      "<circle class=\"k1\" r=\"4\"/>",
      "<rect class=\"k2\" x=\"-3.6\" y=\"-3.6\" width=\"7.2\" height=\"7.2\"/>",
      "<path class=\"k3\" d=\"M0-4.6L4.4 3.4H-4.4Z\"/>",
      "<path class=\"k4\" d=\"M0-4.9L4.9 0 0 4.9-4.9 0Z\"/>"};
  for (int k = 1; k <= 4; ++k) {
    svg += marker("m" + std::to_string(k), shapes[k - 1]);
    svg += marker("c" + std::to_string(k),
                  "<path class=\"k" + std::to_string(k) + "\" d=\"M-4-4L4 4M-4 4L4-4\"/>");
    svg += marker("o" + std::to_string(k),
                  "<path class=\"k" + std::to_string(k) + "\" d=\"M-4 0H4M0-4V4M-4-4H4V4H-4Z\"/>");
    svg += marker("d" + std::to_string(k), "<g class=\"k" + std::to_string(k) +
                                               "\"><circle r=\"2.5\"/><circle r=\"5.2\"/></g>");
  }
  return svg + marker("mm", "<circle class=\"km\" r=\"1.5\"/>") + "</defs>\n";
}

}  // namespace pelmora::report
