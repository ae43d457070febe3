// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/series_drawing.h"

#include "apps/pelmora/output/text_table.h"
#include "curves/table_reading.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <set>

namespace pelmora::cli {
namespace {

using calibration::PointState;
using calibration::RawPoint;
using calibration::TableReading;

constexpr std::size_t labelColumns = 9;
constexpr int curveInk = 7;

// By raw part; a part is a fluid. The shapes tell them apart without colour, too.
const std::array<PlotMark, 4> partMarks{
    {{"●", 'o', 6}, {"▲", 'x', 3}, {"■", '#', 5}, {"◆", '*', 2}}};
const PlotMark excludedMark{"×", 'e', 1};
const PlotMark cutMark{"○", 'c', 0};
const PlotMark distrustedMark{"◎", 'd', 1};

const PlotMark& markOf(const RawPoint& point) {
  if (point.state == PointState::excluded) return excludedMark;
  if (point.state == PointState::cut) return cutMark;
  if (point.state == PointState::distrusted) return distrustedMark;
  return partMarks.at(static_cast<std::size_t>(point.part - 1));
}

// A range of values on one axis of a panel.
struct Axis {
  double low = 0, high = 1;
  [[nodiscard]] double place(double value) const { return (value - low) / (high - low); }
};

Axis widened(double low, double high, double share) {
  const double span = high > low ? high - low : std::max(std::fabs(high), 1.0);
  return {low - share * span, high + share * span};
}

bool isDrawable(const RawPoint& point) {
  return point.roshko > 0 && std::isfinite(point.roshko) && std::isfinite(point.strouhal);
}

class Drawing {
 public:
  Drawing(const DrawnSeries& series, const DrawingSize& size)
      : series_(series), curve_(series.curve), columns_(size.columns - labelColumns - 1) {
    double low = HUGE_VAL, high = -HUGE_VAL;
    const auto take = [&](double roshko) {
      low = std::min(low, std::log10(roshko));
      high = std::max(high, std::log10(roshko));
    };
    for (const RawPoint& point : series.points) {
      if (isDrawable(point)) take(point.roshko);
    }
    if (!curve_.empty() && curve_.lowest() > 0) take(curve_.lowest()), take(curve_.highest());
    if (low <= high) x_ = widened(low, high, 0.02);
  }

  [[nodiscard]] bool hasCurve() const { return !curve_.empty(); }

  [[nodiscard]] std::vector<std::string> strouhal(std::size_t rows, PlotStyle style,
                                                  bool isColoured) const {
    PlotCanvas canvas(columns_, rows);
    double low = HUGE_VAL, high = -HUGE_VAL;
    const auto take = [&](double value) {
      if (std::isfinite(value)) low = std::min(low, value), high = std::max(high, value);
    };
    for (const RawPoint& point : series_.points) {
      if (isDrawable(point)) take(point.strouhal);
    }
    for (const double value :
         series_.curve.empty() ? std::span<const double>() : series_.curve.column(1))
      take(value);
    if (!(low <= high)) return {};
    const Axis y = widened(low, high, 0.05);
    alongCurve(canvas, [&](double value) { canvas.dot(at_, y.place(value), curveInk); });
    for (const RawPoint& point : series_.points) {
      if (isDrawable(point))
        canvas.mark(x_.place(std::log10(point.roshko)), y.place(point.strouhal), markOf(point));
    }
    return labelled(canvas.lines(style, isColoured), y, style);
  }

  // In per cent of the curve; what lies beyond the panel is drawn at its edge.
  [[nodiscard]] std::vector<std::string> residuals(std::size_t rows, PlotStyle style,
                                                   bool isColoured) const {
    PlotCanvas canvas(columns_, rows);
    std::vector<double> sizes;
    for (const RawPoint& point : series_.points) {
      if (point.residualPercent) sizes.push_back(std::fabs(*point.residualPercent));
    }
    if (sizes.empty()) return {};
    const double largest = *std::ranges::max_element(sizes);
    // A point far out must not flatten all others.
    constexpr double mostBands = 4;
    const double band = series_.bandPercent;
    double reach = std::max(largest, band);
    if (band > 0) reach = std::min(reach, mostBands * band);
    if (!(reach > 0)) reach = 1;
    const Axis y = widened(-reach, reach, 0.05);
    for (std::size_t i = 0; i < canvas.dotColumns(); ++i) {
      const double x = (static_cast<double>(i) + 0.5) / static_cast<double>(canvas.dotColumns());
      canvas.dot(x, y.place(0), curveInk);
      if (band > 0 && i % 4 < 2) {
        canvas.dot(x, y.place(band), 0);
        canvas.dot(x, y.place(-band), 0);
      }
    }
    for (const RawPoint& point : series_.points) {
      if (!point.residualPercent || !isDrawable(point)) continue;
      const double residual = std::clamp(*point.residualPercent, -reach, reach);
      canvas.mark(x_.place(std::log10(point.roshko)), y.place(residual), markOf(point));
    }
    return labelled(canvas.lines(style, isColoured), y, style);
  }

  // The decades of Roshko under the panels.
  [[nodiscard]] std::string scale() const {
    std::string line(labelColumns + 1 + columns_, ' ');
    std::size_t end = 0;
    const auto put = [&](double log) {
      const double place = x_.place(log);
      if (!(place >= 0 && place <= 1)) return;
      const std::string text = significantText(std::pow(10, log), 4);
      const auto centre =
          labelColumns + 1 + static_cast<std::size_t>(place * static_cast<double>(columns_ - 1));
      const std::size_t start =
          std::min(line.size() - text.size(), centre - std::min(centre, text.size() / 2));
      if (start < end) return;
      line.replace(start, text.size(), text);
      end = start + text.size() + 2;
    };
    const bool hasFewDecades = x_.high - x_.low < 2;
    for (double decade = std::floor(x_.low); decade <= x_.high; ++decade) {
      put(decade);
      if (hasFewDecades) put(decade + std::log10(2)), put(decade + std::log10(5));
    }
    return line.substr(0, line.find_last_not_of(' ') + 1);
  }

 private:
  template <class Use>
  void alongCurve(const PlotCanvas& canvas, Use&& use) const {
    if (curve_.empty()) return;
    for (std::size_t i = 0; i < canvas.dotColumns(); ++i) {
      at_ = (static_cast<double>(i) + 0.5) / static_cast<double>(canvas.dotColumns());
      const auto value = curve_.at(std::pow(10, x_.low + at_ * (x_.high - x_.low)));
      if (value) use(*value);
    }
  }

  // Values of the highest, the middle and the lowest row, and a line at the left.
  static std::vector<std::string> labelled(std::vector<std::string> lines, const Axis& y,
                                           PlotStyle style) {
    for (std::size_t row = 0; row < lines.size(); ++row) {
      const bool hasLabel = row == 0 || row + 1 == lines.size() || row == lines.size() / 2;
      const double place = 1 - (static_cast<double>(row) + 0.5) / static_cast<double>(lines.size());
      std::string label = hasLabel ? significantText(y.low + place * (y.high - y.low), 4) : "";
      if (label.size() + 1 < labelColumns) label.insert(0, labelColumns - 1 - label.size(), ' ');
      const char* edge = style == PlotStyle::ascii ? " |" : (hasLabel ? " ┤" : " │");
      lines[row] = label + edge + lines[row];
    }
    return lines;
  }

  const DrawnSeries& series_;
  TableReading curve_;
  std::size_t columns_;
  Axis x_;
  mutable double at_ = 0;
};

std::string legend(const DrawnSeries& series, PlotStyle style, bool isColoured) {
  std::string text;
  const auto add = [&](const PlotMark& mark, const std::string& words) {
    const std::string sign =
        style == PlotStyle::ascii ? std::string(1, mark.ascii) : mark.character;
    const bool isInked = isColoured && mark.ink != 0;
    text += (text.empty() ? "" : "  ") +
            (isInked ? "\033[" + std::to_string(30 + mark.ink) + "m" + sign + "\033[0m" : sign) +
            " " + words;
  };
  std::set<int> parts;
  bool hasExcluded = false, hasCut = false, hasDistrusted = false;
  for (const RawPoint& point : series.points) {
    hasExcluded |= point.state == PointState::excluded;
    hasCut |= point.state == PointState::cut;
    hasDistrusted |= point.state == PointState::distrusted;
    if (!parts.insert(point.part).second) continue;
    add(partMarks.at(static_cast<std::size_t>(point.part - 1)),
        point.fluid.empty() ? "part " + std::to_string(point.part) : point.fluid);
  }
  if (hasCut) add(cutMark, "cut by the merge");
  if (hasExcluded) add(excludedMark, "excluded");
  if (hasDistrusted) add(distrustedMark, "distrusted, not fitted");
  return text;
}

}  // namespace

DrawingSize drawingSize() {
  DrawingSize size;
  winsize window{};
  const auto fromVariable = [](const char* name, std::size_t& value) {
    const char* text = std::getenv(name);
    if (text != nullptr && std::atoi(text) > 0) value = static_cast<std::size_t>(std::atoi(text));
  };
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) == 0 && window.ws_col > 0 && window.ws_row > 0) {
    size = {window.ws_col, window.ws_row};
  } else {
    fromVariable("COLUMNS", size.columns);
    fromVariable("LINES", size.rows);
  }
  size.columns = std::clamp<std::size_t>(size.columns, 40, 200);
  size.rows = std::clamp<std::size_t>(size.rows, 16, 60);
  return size;
}

std::string drawing(const DrawnSeries& series, const DrawingSize& size, PlotStyle style,
                    bool isColoured) {
  const Drawing plot(series, size);
  // Two titles, the scale, the legend, the headline of the command and its prompt.
  const std::size_t rows = size.rows - 6;
  const std::size_t lower = plot.hasCurve() ? std::max<std::size_t>(5, rows / 3) : 0;
  std::string text;
  const auto add = [&](const std::string& title, const std::vector<std::string>& lines) {
    if (lines.empty()) return;
    text += std::string(labelColumns + 1, ' ') + title + "\n";
    for (const std::string& line : lines) text += line + "\n";
  };
  add("Strouhal over Roshko", plot.strouhal(rows - lower, style, isColoured));
  if (lower > 0) {
    const std::string band =
        series.bandPercent > 0 ? ", band " + significantText(series.bandPercent, 4) + " %" : "";
    add("Off the curve, %" + band, plot.residuals(lower, style, isColoured));
  }
  if (text.empty()) return text;
  return text + plot.scale() + "\n" + legend(series, style, isColoured) + "\n";
}

}  // namespace pelmora::cli
