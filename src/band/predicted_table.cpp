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

std::optional<TableReading> PredictedTable::at(double x) const { return Reader(*this).at(x); }

// x: within the table's range.
void PredictedTable::Reader::moveTo(double x) {
  const auto isNext = [&](std::size_t k) {
    return points_[k].x >= x && (k == 0 || points_[k - 1].x < x);
  };
  if (isNext(first_)) return;
  if (first_ + 1 < points_.size() && isNext(first_ + 1)) {
    ++first_;
    return;
  }
  const auto found =
      std::lower_bound(points_.begin(), points_.end(), x,
                       [](const TablePoint& p, double value) { return p.x < value; });
  first_ = static_cast<std::size_t>(found - points_.begin());
}

std::optional<TableReading> PredictedTable::Reader::at(double x) {
  if (points_.empty()) return std::nullopt;
  // A predicted curve ends where it was asked to up to the rounding of its logarithms; the raw
  // points at the very ends are to be tested all the same.
  constexpr double rounding = 1e-12;
  const double lowest = points_.front().x;
  const double highest = points_.back().x;
  if (x < lowest && lowest - x <= rounding * std::fabs(lowest)) x = lowest;
  if (x > highest && x - highest <= rounding * std::fabs(highest)) x = highest;
  if (!(x >= lowest && x <= highest)) return std::nullopt;
  moveTo(x);
  const TablePoint& first = points_[first_];
  if (first.x != x) {
    const double y = between(points_[first_ - 1], first, x);
    return TableReading{y, y};
  }
  TableReading reading{first.y, first.y};
  for (std::size_t k = first_; k < points_.size() && points_[k].x == x; ++k) {
    reading.lowest = std::min(reading.lowest, points_[k].y);
    reading.highest = std::max(reading.highest, points_[k].y);
  }
  return reading;
}

}  // namespace pelmora::band
