// SPDX-License-Identifier: MIT
#include "band/predicted_table.h"

#include <algorithm>
#include <cmath>

namespace pelmora::band {

PredictedTable::PredictedTable(std::span<const double> x, std::span<const double> y) {
  if (x.size() != y.size()) {
    defect_ = "the predicted curve has columns of different length";
    return;
  }
  if (x.empty()) {
    defect_ = "the predicted curve has no points";
    return;
  }
  for (std::size_t k = 0; k < x.size(); ++k) {
    if (!std::isfinite(x[k]) || !std::isfinite(y[k])) {
      defect_ = "the predicted curve has a point that is not finite";
      return;
    }
    points_.push_back({x[k], y[k]});
  }
  std::stable_sort(points_.begin(), points_.end(),
                   [](const TablePoint& a, const TablePoint& b) { return a.x < b.x; });
}

double between(const TablePoint& a, const TablePoint& b, double x) {
  if (x == a.x) return a.y;
  if (x == b.x) return b.y;
  // Halves, so that the width of a segment over all numbers does not overflow.
  const double share = (x / 2 - a.x / 2) / (b.x / 2 - a.x / 2);
  return a.y * (1 - share) + b.y * share;
}

std::optional<TableReading> PredictedTable::at(double x) const {
  if (points_.empty()) return std::nullopt;
  // A predicted curve ends where it was asked to up to the rounding of its logarithms; the raw
  // points at the very ends are to be tested all the same.
  constexpr double rounding = 1e-12;
  const double lowest = points_.front().x;
  const double highest = points_.back().x;
  if (x < lowest && lowest - x <= rounding * std::fabs(lowest)) x = lowest;
  if (x > highest && x - highest <= rounding * std::fabs(highest)) x = highest;
  if (!(x >= lowest && x <= highest)) return std::nullopt;
  const auto first =
      std::lower_bound(points_.begin(), points_.end(), x,
                       [](const TablePoint& p, double value) { return p.x < value; });
  if (first->x != x) {
    const double y = between(*(first - 1), *first, x);
    return TableReading{y, y};
  }
  TableReading reading{first->y, first->y};
  for (auto point = first; point != points_.end() && point->x == x; ++point) {
    reading.lowest = std::min(reading.lowest, point->y);
    reading.highest = std::max(reading.highest, point->y);
  }
  return reading;
}

}  // namespace pelmora::band
