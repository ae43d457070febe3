// What the marks of a series' plot mean.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <string>
#include <vector>

namespace pelmora::report {

struct LegendEntry {
  // Class of what it explains: raw1, cut1, out1, merged, attempt, curve, band, conf or pred.
  std::string key;
  bool isMarker = false;  // else a line, or an area for conf and pred
  std::string label;
};

// Only what the plot shows, in the order of importance.
[[nodiscard]] std::vector<LegendEntry> legendOf(const SeriesReport& series);

// The mark alone, 24 x 12 px: an <svg> of its own, or a group for a larger one.
[[nodiscard]] std::string legendMark(const LegendEntry& entry);

}  // namespace pelmora::report
