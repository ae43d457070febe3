// Points to fit.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/types.h>

#include <cmath>
#include <random>

namespace pelmora::bench {

// A rotor's curve from Roshko 10 to 1500 with noise that no equation fits to R2 >= 0.9999, so that
// all six are fitted, tested and reported.
inline PointArray noisyPoints(std::size_t count) {
  constexpr double lowest = 10, highest = 1500;
  PointArray points(count);
  std::mt19937 random(7);
  std::normal_distribution<double> noise(0, 0.0006);
  for (std::size_t i = 0; i < count; ++i) {
    const double t = static_cast<double>(i) / static_cast<double>(count - 1);
    const double x = lowest * std::pow(highest / lowest, t);
    points(i, 0) = x;
    points(i, 1) = 1300 * (1 - 0.6 / x - 0.01 * std::exp(-std::pow(std::log(x / 90), 2))) *
                   (1 + noise(random));
  }
  return points;
}

}  // namespace pelmora::bench
