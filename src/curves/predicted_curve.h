// Where a curve is predicted, and whether it can be a rotor ratio curve.
// SPDX-License-Identifier: MIT
#pragma once

#include "points/point_sort.h"

#include <cstdint>
#include <span>
#include <vector>

namespace pelmora {

// log10 |v|, negated where v < 0. Errors: Error 5 for 0.
[[nodiscard]] double signedLog10(double v);

// intervals + 1 values from low to high, evenly spaced in signedLog10; both ends included up to
// rounding.
//
// Errors: Error 11 for no intervals, 9 for fewer, 5 if an end is 0, 6 if a value overflows.
[[nodiscard]] std::vector<double> logSpacedGrid(double low, double high, std::int32_t intervals);

// True when x never increases as y increases. x, y: n values of the same points.
[[nodiscard]] bool ratioCurveIsMonotonic(std::span<const double> x, std::span<const double> y,
                                         const SortWatch& watch = {});

}  // namespace pelmora
