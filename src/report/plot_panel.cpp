// SPDX-License-Identifier: MIT
#include "report/plot_panel.h"

#include "report/line_simplification.h"
#include "report/markup.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace pelmora::report {
namespace {

constexpr double tickLength = 5, smallTickLength = 3, labelGap = 8;
constexpr int wantedXTicks = 8;
constexpr double pixelsOfYTick = 45;
constexpr double invisible = 0.15;  // px that a line may be off

std::string attribute(const std::string& name, const std::string& value) {
  return " " + name + "=\"" + value + "\"";
}

std::string text(const std::string& cssClass, double x, double y, const std::string& content) {
  return "<text class=\"" + cssClass + "\"" + attribute("x", coordinate(x)) +
         attribute("y", coordinate(y)) + ">" + content + "</text>";
}

// Tenths, which no screen or printer at this size tells from more.
double pixel(double value) { return std::round(value * 10) / 10; }

// More marks of one class would only cover each other.
constexpr std::size_t mostMarks = 1500;

// One place in each square of a grid, which is made coarser until no more than mostMarks are left.
std::vector<PlotPoint> thinned(const std::vector<PlotPoint>& places) {
  if (places.size() <= mostMarks) return places;
  std::vector<PlotPoint> kept = places;
  for (double square = 1; kept.size() > mostMarks; square *= 1.25) {
    std::set<std::pair<long, long>> taken;
    kept.clear();
    for (const PlotPoint& place : places) {
      if (taken.emplace(std::lround(place[0] / square), std::lround(place[1] / square)).second)
        kept.push_back(place);
    }
  }
  return kept;
}

bool isFinite(const PlotPoint& point) { return std::isfinite(point[0]) && std::isfinite(point[1]); }

// Path data: the first place absolute, the others relative. Differences of rounded places, so that
// roundings do not add up.
std::string pathData(const std::vector<PlotPoint>& places) {
  std::string result;
  double lastX = 0, lastY = 0;
  for (const PlotPoint& place : places) {
    const double x = pixel(place[0]), y = pixel(place[1]);
    const std::string dx = coordinate(x - lastX), dy = coordinate(y - lastY);
    const bool isFirst = result.empty(),
               isSecond = !isFirst && result.find('l') == std::string::npos;
    result += isFirst ? "M" : isSecond ? "l" : dx.starts_with('-') ? "" : " ";
    result += dx + (dy.starts_with('-') ? "" : " ") + dy;
    lastX = x, lastY = y;
  }
  return result;
}

}  // namespace

PlotPanel::PlotPanel(const std::string& name, const PanelPlace& place, PlotScale x, PlotScale y)
    : place_(place), x_(std::move(x)), y_(std::move(y)) {
  svg_ =
      "<g class=\"panel\"" + attribute("data-name", name) +
      attribute("data-x0", exactNumber(x_.low())) + attribute("data-x1", exactNumber(x_.high())) +
      attribute("data-y0", exactNumber(y_.low())) + attribute("data-y1", exactNumber(y_.high())) +
      attribute("data-log", x_.isLog() ? "1" : "0") +
      attribute("data-left", coordinate(place_.left)) +
      attribute("data-top", coordinate(place_.top)) +
      attribute("data-width", coordinate(place_.width)) +
      attribute("data-height", coordinate(place_.height)) + ">\n";
}

std::vector<PlotPoint> PlotPanel::places(const std::vector<PlotPoint>& points) const {
  std::vector<PlotPoint> result;
  for (const PlotPoint& point : points) {
    if (!isFinite(point)) continue;
    result.push_back({place_.left + x_.share(point[0]) * place_.width,
                      place_.top + (1 - y_.share(point[1])) * place_.height});
  }
  return result;
}

void PlotPanel::drawAxes(const std::string& xTitle, const std::string& yTitle, bool hasXLabels) {
  const double right = place_.left + place_.width, bottom = place_.top + place_.height;
  std::string grid, ticks, labels;
  for (const Tick& tick : x_.ticks(wantedXTicks)) {
    const double place = pixel(place_.left + x_.share(tick.value) * place_.width);
    const std::string x = coordinate(place);
    const bool isLarge = !tick.label.empty();
    if (!isLarge && !hasXLabels) continue;
    if (isLarge) grid += "M" + x + " " + coordinate(place_.top) + "V" + coordinate(bottom);
    ticks += "M" + x + " " + coordinate(bottom) + "v" +
             coordinate(isLarge ? tickLength : smallTickLength);
    if (isLarge && hasXLabels) labels += text("xl", place, bottom + 2 * labelGap + 2, tick.label);
  }
  for (const Tick& tick : y_.ticks(std::max(4, static_cast<int>(place_.height / pixelsOfYTick)))) {
    const double y = pixel(place_.top + (1 - y_.share(tick.value)) * place_.height);
    grid += "M" + coordinate(place_.left) + " " + coordinate(y) + "H" + coordinate(right);
    ticks += "M" + coordinate(place_.left) + " " + coordinate(y) + "h" + coordinate(-tickLength);
    labels += text("yl", place_.left - labelGap, y + 4, tick.label);
  }
  svg_ += "<path class=\"grid\" d=\"" + grid + "\"/>\n<path class=\"axis\" d=\"" + ticks + "M" +
          coordinate(place_.left) + " " + coordinate(place_.top) + "V" + coordinate(bottom) + "H" +
          coordinate(right) + "\"/>\n" + labels;
  const double middle = place_.top + place_.height / 2;
  svg_ += "<text class=\"at\" transform=\"translate(16," + coordinate(middle) + ") rotate(-90)\">" +
          escaped(yTitle) + "</text>";
  if (hasXLabels) svg_ += text("at", place_.left + place_.width / 2, bottom + 38, escaped(xTitle));
  svg_ += "\n";
}

bool PlotPanel::isInside(const PlotPoint& point) const {
  return point[1] >= y_.low() && point[1] <= y_.high();
}

void PlotPanel::drawMarkers(const std::string& cssClass, const std::vector<PlotPoint>& points) {
  std::vector<PlotPoint> shown;
  for (const PlotPoint& point : points) {
    if (!isFinite(point)) continue;
    if (isInside(point))
      shown.push_back(point);
    else
      ++hidden_;
  }
  if (shown.empty()) return;
  svg_ +=
      "<path class=\"dots " + cssClass + "\" d=\"" + pathData(thinned(places(shown))) + "\"/>\n";
}

void PlotPanel::drawLine(const std::string& cssClass, const std::vector<PlotPoint>& points) {
  const auto line = simplified(places(points), invisible);
  if (!line.empty())
    svg_ += "<path class=\"line " + cssClass + "\" d=\"" + pathData(line) + "\"/>\n";
}

void PlotPanel::drawArea(const std::string& cssClass, const std::vector<PlotPoint>& upper,
                         const std::vector<PlotPoint>& lower) {
  const auto edge = [&](std::vector<PlotPoint> points) {
    for (PlotPoint& point : points) point[1] = std::clamp(point[1], y_.low(), y_.high());
    return simplified(places(points), invisible);
  };
  std::vector<PlotPoint> outline = edge(upper);
  const std::vector<PlotPoint> back = edge(lower);
  outline.insert(outline.end(), back.rbegin(), back.rend());
  if (!outline.empty())
    svg_ += "<path class=\"" + cssClass + "\" d=\"" + pathData(outline) + "\"/>\n";
}

void PlotPanel::noteHidden() {
  if (hidden_ == 0) return;
  const std::string points = hidden_ == 1 ? " point lies" : " points lie";
  svg_ += text("note", place_.left + place_.width - 6, place_.top - 6,
               std::to_string(hidden_) + points + " beyond the scale");
}

std::string PlotPanel::take() { return svg_ + "</g>\n"; }

}  // namespace pelmora::report
