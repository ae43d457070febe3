// A series in the terminal: its points, its curve with the band, and the residuals.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/output/plot_canvas.h"

#include <pelmora/calibration/points.h>
#include <pelmora/types.h>

#include <cstddef>
#include <string>
#include <vector>

namespace pelmora::cli {

struct DrawnSeries {
  std::vector<calibration::RawPoint> points;
  PointArray curve;        // no bounds: the points alone are drawn
  double bandPercent = 0;  // of the curve; 0: none is drawn
};

struct DrawingSize {
  std::size_t columns = 80, rows = 24;
};

// Of the terminal behind standard output, else of COLUMNS and LINES, else 80 x 24; within limits
// that a plot can be read in.
[[nodiscard]] DrawingSize drawingSize();

// Both panels, one above the other, with a legend; fits into `size`.
[[nodiscard]] std::string drawing(const DrawnSeries& series, const DrawingSize& size,
                                  PlotStyle style, bool isColoured);

}  // namespace pelmora::cli
