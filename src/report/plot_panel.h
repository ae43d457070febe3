// One rectangle of a plot: axes, and values drawn into it.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/plot_scale.h"

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::report {

struct PanelPlace {
  double left = 0, top = 0, width = 0, height = 0;  // px
};

using PlotPoint = std::array<double, 2>;  // values of x and y

// Builds a <g class="panel">. Classes name what is drawn; colours are the document's.
class PlotPanel {
 public:
  PlotPanel(const std::string& name, const PanelPlace& place, PlotScale x, PlotScale y);

  // Grid, ticks and titles; without x labels where another panel below shares them.
  void drawAxes(const std::string& xTitle, const std::string& yTitle, bool hasXLabels);
  // A path through the points whose corners carry the class's markers. Points outside the panel are
  // left out.
  void drawMarkers(const std::string& cssClass, const std::vector<PlotPoint>& points);
  void drawLine(const std::string& cssClass, const std::vector<PlotPoint>& points);
  // Between two lines over the same x, cut off at the panel's edges.
  void drawArea(const std::string& cssClass, const std::vector<PlotPoint>& upper,
                const std::vector<PlotPoint>& lower);

  // Says how many points were left out; nothing if none was.
  void noteHidden();

  // Closes the group.
  [[nodiscard]] std::string take();

 private:
  [[nodiscard]] bool isInside(const PlotPoint& point) const;
  // Places in px of the finite points.
  [[nodiscard]] std::vector<PlotPoint> places(const std::vector<PlotPoint>& points) const;

  PanelPlace place_;
  PlotScale x_, y_;
  std::size_t hidden_ = 0;
  std::string svg_;
};

}  // namespace pelmora::report
