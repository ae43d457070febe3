// SPDX-License-Identifier: MIT
#include "report/html_points.h"

#include "base/readable_number.h"
#include "report/markup.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace pelmora::report {
namespace {

using calibration::PointState;
using calibration::RawPoint;
using Points = std::span<const RawPoint>;

bool isLeftOut(const RawPoint& point) {
  return point.state != PointState::used || point.isDistrusted;
}

// Neighbours with the same state are one entry; an excluded point has its own.
bool belongsTo(const RawPoint& first, const RawPoint& next) {
  return !first.exclusion && !next.exclusion && first.part == next.part &&
         first.state == next.state && first.isDistrusted == next.isDistrusted;
}

std::string placeOf(Points points) {
  const RawPoint &first = points.front(), &last = points.back();
  const std::string from = std::to_string(first.number), roshko = significantText(first.roshko, 6);
  if (points.size() == 1)
    return "Part " + std::to_string(first.part) + ", point " + from + " (Roshko " + roshko + ")";
  return "Part " + std::to_string(first.part) + ", points " + from + " to " +
         std::to_string(last.number) + " (Roshko " + roshko + " to " +
         significantText(last.roshko, 6) + ")";
}

std::string stateOf(Points points) {
  const RawPoint& first = points.front();
  if (first.exclusion) {
    const std::string& who = first.exclusion->userName;
    return "excluded" + (who.empty() ? "" : " by " + who) + " on " + first.exclusion->excludedAt +
           ": " + first.exclusion->reason;
  }
  if (first.state == PointState::outsideRange) return "outside the range";
  if (first.state == PointState::used) {
    return first.sigmas
               ? fixedText(std::fabs(*first.sigmas), 1) + " sigmas off its neighbours, not excluded"
               : "off its neighbours, not excluded";
  }
  double most = 0;
  for (const RawPoint& point : points)
    most = std::max(most, std::fabs(point.cutPercent.value_or(0)));
  return "cut by the merge" + (most > 0 ? ", up to " + significantText(most, 3) + " % off" : "");
}

}  // namespace

std::string htmlLeftOutPoints(const SeriesReport& series) {
  std::string entries;
  const Points all = series.points;
  for (std::size_t i = 0; i < all.size();) {
    std::size_t end = i + 1;
    if (isLeftOut(all[i])) {
      while (end < all.size() && isLeftOut(all[end]) && belongsTo(all[i], all[end])) ++end;
      const Points group = all.subspan(i, end - i);
      entries += "<li>" + escaped(placeOf(group) + ": " + stateOf(group));
    }
    i = end;
  }
  return entries.empty() ? entries : "<h3>Points left out</h3>\n<ul>" + entries + "</ul>\n";
}

}  // namespace pelmora::report
