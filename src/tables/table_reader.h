// How a flow computer reads its table between the points.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace pelmora::tables {

enum class Reading {
  linear,       // y along a straight line in x
  logarithmic,  // y along a straight line in ln x
  cubic,        // y along the cubic through four points in ln x: two on either side, at the ends
                // the outermost four
};

// "linear", "logarithmic", "cubic".
[[nodiscard]] std::string_view readingName(Reading reading);
// 2, or 4 for cubic reading.
[[nodiscard]] std::size_t fewestPoints(Reading reading);

// A value: copies its points.
class TableReader {
 public:
  // Errors: BadData for fewer than fewestPoints, lengths that differ, numbers that are not finite,
  //         x that does not strictly rise or is not above 0.
  TableReader(std::span<const double> x, std::span<const double> y, Reading reading);

  // Beyond the ends the outermost piece goes on.
  [[nodiscard]] double operator()(double x) const;

 private:
  [[nodiscard]] double cubicAt(double place, std::size_t segment) const;
  Reading reading_;
  std::vector<double> place_, y_;  // x, or ln x
};

}  // namespace pelmora::tables
