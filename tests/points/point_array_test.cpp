// SPDX-License-Identifier: MIT
#include <pelmora/types.h>

#include <gtest/gtest.h>

#include <vector>

namespace pelmora {
namespace {

TEST(point_array, without_bounds_has_no_points_and_no_columns) {
  const PointArray points;
  EXPECT_TRUE(points.empty());
  EXPECT_EQ(points.size(), 0U);
  EXPECT_EQ(points.columns(), 0U);
}

TEST(point_array, sized_array_is_filled_with_zeros) {
  const PointArray points(3, 4);
  EXPECT_EQ(points.size(), 3U);
  EXPECT_EQ(points.columns(), 4U);
  for (std::size_t c = 0; c < 4; ++c) {
    for (const double value : points.column(c)) EXPECT_EQ(value, 0.0);
  }
}

TEST(point_array, has_two_columns_by_default) { EXPECT_EQ(PointArray(2).columns(), 2U); }

TEST(point_array, stores_all_roshko_values_before_all_strouhal_values) {
  const PointArray points{{1, 10}, {2, 20}, {3, 30}};
  const double* first = points.column(0).data();
  EXPECT_EQ(std::vector<double>(first, first + 6), (std::vector<double>{1, 2, 3, 10, 20, 30}));
}

TEST(point_array, upper_bound_is_one_less_than_the_points) {
  EXPECT_EQ(pointUpperBound(PointArray()), -1);
  EXPECT_EQ(pointUpperBound(PointArray{{1, 2}}), 0);
  EXPECT_EQ(pointUpperBound(PointArray(2)), 1);
  EXPECT_EQ(pointUpperBound(PointArray(32768)), 32767);
}

TEST(point_array, upper_bound_beyond_16_bits_counts_as_none) {
  EXPECT_EQ(pointUpperBound(PointArray(32769)), -1);
  EXPECT_EQ(pointUpperBound(PointArray(100000)), -1);
}

}  // namespace
}  // namespace pelmora
