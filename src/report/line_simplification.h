// Fewer corners for the same line.
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace pelmora::report {

// The points, first and last included, between which straight lines stay within `tolerance` of all
// points.
//
// Source: Douglas and Peucker, Algorithms for the reduction of the number of points required to
// represent a
//         digitized line, Cartographica 10 (1973).
[[nodiscard]] std::vector<std::array<double, 2>> simplified(
    std::span<const std::array<double, 2>> line, double tolerance);

}  // namespace pelmora::report
