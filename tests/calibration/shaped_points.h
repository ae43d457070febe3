// Points of curves that are hard to fit, with noise.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/calibration/service_fixture.h"

#include <cmath>
#include <cstddef>
#include <random>

namespace pelmora::calibration::test {

// With noise of the standard deviation `sd`, as a fraction, on every Strouhal number; the same for
// the same seed.
inline PointArray noisy(PointArray points, double sd, unsigned seed) {
  std::mt19937 random(seed);
  std::normal_distribution<double> noise(0, sd);
  for (std::size_t i = 0; i < points.size(); ++i) points(i, 1) *= 1 + noise(random);
  return points;
}

// A shape that none of the equations has: two steps in log Roshko.
inline PointArray steps(std::size_t count) {
  PointArray points = smoothPoints(count);
  for (std::size_t i = 0; i < count; ++i) {
    const double l = std::log(points(i, 0));
    points(i, 1) =
        1000 * (1 + 0.01 * std::tanh((l - 3.5) / 0.25) - 0.012 * std::tanh((l - 5.5) / 0.2));
  }
  return points;
}

}  // namespace pelmora::calibration::test
