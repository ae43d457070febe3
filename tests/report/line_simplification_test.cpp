// SPDX-License-Identifier: MIT
#include "report/line_simplification.h"

#include <gtest/gtest.h>

#include <cmath>

namespace pelmora::report {
namespace {

using Line = std::vector<std::array<double, 2>>;

TEST(line_simplification, leaves_out_what_lies_on_a_straight_line) {
  EXPECT_EQ(simplified(Line{{0, 0}, {1, 1}, {2, 2}, {3, 0}}, 0.1), (Line{{0, 0}, {2, 2}, {3, 0}}));
}

TEST(line_simplification, keeps_what_is_farther_than_the_tolerance) {
  EXPECT_EQ(simplified(Line{{0, 0}, {1, 0.2}, {2, 0}}, 0.1).size(), 3U);
  EXPECT_EQ(simplified(Line{{0, 0}, {1, 0.05}, {2, 0}}, 0.1).size(), 2U);
}

TEST(line_simplification, stays_within_the_tolerance_of_a_curve) {
  Line line;
  for (int i = 0; i <= 200; ++i) line.push_back({i / 10.0, 5 * std::sin(i / 20.0)});
  const Line few = simplified(line, 0.05);
  EXPECT_LT(few.size(), 60U);
  std::size_t piece = 0;
  for (const auto& [x, y] : line) {
    while (few[piece + 1][0] < x) ++piece;
    const auto& a = few[piece];
    const auto& b = few[piece + 1];
    const double onLine = a[1] + (b[1] - a[1]) * (x - a[0]) / (b[0] - a[0]);
    const double slope = (b[1] - a[1]) / (b[0] - a[0]);
    EXPECT_LE(std::fabs(y - onLine) / std::hypot(1, slope), 0.05 + 1e-12) << x;
  }
}

TEST(line_simplification, leaves_short_lines_alone) {
  EXPECT_TRUE(simplified(Line{}, 1).empty());
  EXPECT_EQ(simplified(Line{{1, 1}, {1, 1}}, 1).size(), 2U);
}

}  // namespace
}  // namespace pelmora::report
