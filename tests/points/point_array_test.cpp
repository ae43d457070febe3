// SPDX-License-Identifier: MIT
#include <pelmora/types.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
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

// The number of the error that `act` throws; 0 where it throws none.
template <class Act>
std::int32_t errorOf(Act&& act) {
  try {
    act();
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

TEST(point_array, of_more_values_than_memory_has_addresses_is_an_overflow) {
  constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
  const auto make = [](std::size_t points, std::size_t columns) {
    return errorOf([=] { (void)PointArray(points, columns); });
  };
  EXPECT_EQ(make(most / 2 + 1, 2), 6);  // two columns of it are no values at all, modulo 2^64
  EXPECT_EQ(make(most, 2), 6);
  EXPECT_EQ(make(most, 1), 6);
  EXPECT_EQ(make(2, most), 6);
  EXPECT_EQ(make(most / sizeof(double) + 1, 1), 6);
  EXPECT_EQ(make(0, most), 0);
}

TEST(point_array, column_that_is_not_there_is_out_of_range) {
  PointArray points(3);
  const PointArray& fixed = points;
  EXPECT_EQ(errorOf([&] { (void)points.column(2); }), 9);
  EXPECT_EQ(errorOf([&] { (void)fixed.column(2); }), 9);
  EXPECT_EQ(errorOf([&] { (void)fixed.column(std::numeric_limits<std::size_t>::max()); }), 9);
  EXPECT_EQ(fixed.column(1).size(), 3U);
  EXPECT_EQ(errorOf([] { (void)PointArray(0).column(2); }), 9);
  EXPECT_EQ(errorOf([] { (void)PointArray(5, 0).column(0); }), 9);
}

TEST(point_array, without_bounds_has_empty_columns) {
  const PointArray points;
  EXPECT_TRUE(points.column(0).empty());
  EXPECT_TRUE(points.column(1).empty());
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
