// Tables that are read linearly: where their rows lie, and how many they need.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace pelmora {

using CurveSamples = std::function<std::vector<double>(std::span<const double>)>;

// Where linear interpolation in a table misses its curve most, halfway between two points.
struct ReadingError {
  double percent = 0, fromX = 0, toX = 0;
};
[[nodiscard]] ReadingError worstReadingError(const CurveSamples& curve,
                                             std::span<const double> tableX,
                                             std::span<const double> tableY);

// Rows from `low` to `high`, both included: evenly spaced in the logarithm if their linear reading
// misses the curve by at most `limitPercent`, else closer together where the curve bends.
//
// Errors: as logSpacedGrid. Needs low > 0.
[[nodiscard]] std::vector<double> placedGrid(const CurveSamples& curve, double low, double high,
                                             std::int32_t intervals, double limitPercent);

// The smallest multiple of ten points, at least `points`, placed by placedGrid(), whose linear
// reading misses the curve by at most `limitPercent`; 0 if mostTablePoints are not enough.
inline constexpr std::int32_t mostTablePoints = 2000;
enum class TableSpacing { even, placed };  // even: as logSpacedGrid()
[[nodiscard]] std::int32_t tablePointsFor(const CurveSamples& curve, double low, double high,
                                          std::int32_t points, double limitPercent,
                                          TableSpacing spacing = TableSpacing::placed);

}  // namespace pelmora
