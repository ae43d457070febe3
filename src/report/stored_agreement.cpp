// SPDX-License-Identifier: MIT
#include "report/stored_agreement.h"

#include <cmath>
#include <map>
#include <utility>

namespace pelmora::report {

std::size_t mergedPointsNotRaw(const calibration::StoredSeries& stored) {
  std::map<std::pair<double, double>, std::size_t> left;
  for (std::size_t i = 0; i < stored.merged.size(); ++i)
    ++left[{stored.merged(i, 0), stored.merged(i, 1)}];
  std::size_t count = stored.merged.size();
  for (const PointArray& part : stored.raw) {
    for (std::size_t i = 0; i < part.size(); ++i) {
      const auto found = left.find({part(i, 0), part(i, 1)});
      if (found == left.end() || found->second == 0) continue;
      --found->second;
      --count;
    }
  }
  return count;
}

std::optional<double> largestDistancePercent(const PointArray& stored, const PointArray& refit) {
  if (stored.size() != refit.size() || stored.empty()) return std::nullopt;
  double largest = 0;
  for (std::size_t i = 0; i < stored.size(); ++i) {
    const auto apart = [&](std::size_t c) {
      return std::fabs(refit(i, c) - stored(i, c)) / std::fabs(stored(i, c)) * 100;
    };
    const double distance = apart(1);
    if (!(apart(0) <= sameCurvePercent) || std::isnan(distance)) return std::nullopt;
    if (distance > largest) largest = distance;
  }
  return largest;
}

}  // namespace pelmora::report
