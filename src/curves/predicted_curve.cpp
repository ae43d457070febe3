// SPDX-License-Identifier: MIT
#include "curves/predicted_curve.h"

#include "base/run_time_error.h"

#include <pelmora/types.h>

#include <cmath>

namespace pelmora {

double signedLog10(double v) {
  if (v == 0) throw makeError(RunTimeError::invalidArgument);
  const double magnitude = std::log(std::abs(v)) / std::log(10.0);
  return v < 0 ? -magnitude : magnitude;
}

std::vector<double> logSpacedGrid(double low, double high, std::int32_t intervals) {
  const double a = signedLog10(low);
  const double b = signedLog10(high);
  if (intervals == 0) throw makeError(RunTimeError::divisionByZero);
  if (intervals < 0) throw makeError(RunTimeError::outOfRange);
  const double step = (b - a) / intervals;
  std::vector<double> grid(static_cast<std::size_t>(intervals) + 1);
  for (std::size_t k = 0; k < grid.size(); ++k) {
    grid[k] = std::pow(10.0, static_cast<double>(k) * step + a);
    if (!std::isfinite(grid[k])) throw makeError(RunTimeError::overflow);
  }
  return grid;
}

bool ratioCurveIsMonotonic(std::span<const double> x, std::span<const double> y,
                           const SortWatch& watch) {
  PointArray points(x.size());
  for (std::size_t k = 0; k < x.size(); ++k) {
    points(k, 0) = x[k];
    points(k, 1) = y[k];
  }
  sortAllPoints(points, 1, watch);
  for (std::size_t k = 1; k < points.size(); ++k) {
    if (points(k, 0) > points(k - 1, 0)) return false;
  }
  return true;
}

}  // namespace pelmora
