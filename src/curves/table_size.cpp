// SPDX-License-Identifier: MIT
#include "curves/table_size.h"

#include "curves/predicted_curve.h"

#include <algorithm>
#include <cmath>

namespace pelmora {
namespace {

// Of the rows, the share that is spaced evenly wherever the curve bends; so no gap is more than
// three times as wide as in an even table.
constexpr double evenShare = 1.0 / 3;

// Over `x`, log-spaced, how much of the rows belongs below each x, from 0 to 1. Between two rows a
// distance h apart, the chord misses by h^2 |y''| / 8 at most: all miss alike where the density of
// rows is in proportion to the root of |y''|.
std::vector<double> rowShares(std::span<const double> x, std::span<const double> y) {
  std::vector<double> shares(x.size(), 0);
  for (std::size_t i = 1; i + 1 < x.size(); ++i) {
    const double before = (y[i] - y[i - 1]) / (x[i] - x[i - 1]);
    const double behind = (y[i + 1] - y[i]) / (x[i + 1] - x[i]);
    const double bend = 2 * std::abs(behind - before) / (x[i + 1] - x[i - 1]) / std::abs(y[i]);
    shares[i + 1] = shares[i] + std::sqrt(bend) * (x[i + 1] - x[i]);
  }
  const double all = shares.back();
  for (std::size_t i = 0; i < x.size(); ++i) {
    const double even = static_cast<double>(i) / static_cast<double>(x.size() - 1);
    const double bending = all > 0 && std::isfinite(all) ? shares[i] / all : even;
    shares[i] = evenShare * even + (1 - evenShare) * bending;
  }
  return shares;
}

}  // namespace

ReadingError worstReadingError(const CurveSamples& curve, std::span<const double> tableX,
                               std::span<const double> tableY) {
  std::vector<double> middles;
  for (std::size_t i = 0; i + 1 < tableX.size(); ++i)
    middles.push_back((tableX[i] + tableX[i + 1]) / 2);
  const std::vector<double> exact = curve(middles);
  ReadingError worst;
  for (std::size_t i = 0; i < middles.size(); ++i) {
    const double read = (tableY[i] + tableY[i + 1]) / 2;
    const double percent = 100 * std::abs(read - exact[i]) / std::abs(exact[i]);
    if (percent > worst.percent) worst = {percent, tableX[i], tableX[i + 1]};
  }
  return worst;
}

std::vector<double> placedGrid(const CurveSamples& curve, double low, double high,
                               std::int32_t intervals, double limitPercent) {
  std::vector<double> grid = logSpacedGrid(low, high, intervals);
  if (intervals < 3 || worstReadingError(curve, grid, curve(grid)).percent <= limitPercent)
    return grid;
  constexpr std::int32_t finer = 8;
  const std::vector<double> x = logSpacedGrid(low, high, finer * std::max(intervals, 40));
  const std::vector<double> shares = rowShares(x, curve(x));
  std::size_t at = 0;
  for (std::int32_t k = 1; k < intervals; ++k) {
    const double wanted = static_cast<double>(k) / intervals;
    while (at + 2 < x.size() && shares[at + 1] < wanted) ++at;
    const double part = (wanted - shares[at]) / (shares[at + 1] - shares[at]);
    grid[static_cast<std::size_t>(k)] = x[at] * std::pow(x[at + 1] / x[at], part);
  }
  return grid;
}

std::int32_t tablePointsFor(const CurveSamples& curve, double low, double high, std::int32_t points,
                            double limitPercent, TableSpacing spacing) {
  const auto tens = [](double count) {
    return 10 * static_cast<std::int32_t>(std::ceil(count / 10));
  };
  const auto errorOf = [&](std::int32_t count) {
    const std::vector<double> x = spacing == TableSpacing::even
                                      ? logSpacedGrid(low, high, count - 1)
                                      : placedGrid(curve, low, high, count - 1, limitPercent);
    return worstReadingError(curve, x, curve(x)).percent;
  };
  std::int32_t count = std::max(tens(points), 10);
  while (count <= mostTablePoints) {
    const double error = errorOf(count);
    if (error <= limitPercent) return count;
    // The error falls with the square of the spacing.
    const double needed = 1 + (count - 1) * std::sqrt(error / limitPercent);
    count = std::isfinite(needed) ? std::max(count + 10, tens(std::min(needed, 1e6)))
                                  : mostTablePoints + 1;
  }
  return 0;
}

}  // namespace pelmora
