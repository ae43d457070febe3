// The static picture of a series: points and curve above, deviations below; and that of a
// comparison. SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <string>

namespace pelmora::report {

inline constexpr int plotWidth = 720;
inline constexpr int seriesPlotHeight = 520;
inline constexpr int comparisonPlotHeight = 190;

// <svg> elements that share the markers of plotDefinitions() and take their colours from classes.
// Each panel is a <g class="panel"> that states its value ranges: data-x0, data-x1, data-y0,
// data-y1, data-log, and its place: data-left, data-top, data-width, data-height.
[[nodiscard]] std::string seriesPlot(const SeriesReport& series);
// Empty where there is nothing to compare.
[[nodiscard]] std::string comparisonPlot(const SeriesReport& series);
// The markers, once for each document.
[[nodiscard]] std::string plotDefinitions();

}  // namespace pelmora::report
