// SPDX-License-Identifier: MIT
#include "curves/table_reading.h"

#include <algorithm>
#include <cmath>

namespace pelmora::calibration {
namespace {

// A predicted table ends where it was asked to up to the rounding of its logarithms.
constexpr double rounding = 1e-12;

}  // namespace

TableReading::TableReading(const PointArray& table) {
  for (std::size_t i = 0; i < table.size(); ++i) {
    if (std::isfinite(table(i, 0)) && std::isfinite(table(i, 1)))
      points_.push_back({table(i, 0), table(i, 1)});
  }
  std::stable_sort(points_.begin(), points_.end(),
                   [](const auto& a, const auto& b) { return a[0] < b[0]; });
}

std::vector<double> TableReading::nodes() const {
  std::vector<double> nodes;
  for (const auto& point : points_) nodes.push_back(point[0]);
  return nodes;
}

std::optional<double> TableReading::at(double x) const {
  if (points_.empty()) return std::nullopt;
  if (x < lowest() && lowest() - x <= rounding * std::fabs(lowest())) x = lowest();
  if (x > highest() && x - highest() <= rounding * std::fabs(highest())) x = highest();
  if (!(x >= lowest() && x <= highest())) return std::nullopt;
  const auto upper = std::lower_bound(points_.begin(), points_.end(), x,
                                      [](const auto& p, double value) { return p[0] < value; });
  if ((*upper)[0] == x) return (*upper)[1];
  const auto& a = *(upper - 1);
  const auto& b = *upper;
  const double share = (x - a[0]) / (b[0] - a[0]);
  return a[1] * (1 - share) + b[1] * share;
}

std::optional<double> TableReading::deviationPercent(double x, double y) const {
  const auto reading = at(x);
  if (!reading || *reading == 0 || !std::isfinite(y)) return std::nullopt;
  return (y - *reading) / std::fabs(*reading) * 100;
}

}  // namespace pelmora::calibration
