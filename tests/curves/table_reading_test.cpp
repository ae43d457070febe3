// SPDX-License-Identifier: MIT
#include "curves/table_reading.h"

#include <gtest/gtest.h>

#include <cmath>

namespace pelmora::calibration {
namespace {

TEST(table_reading, is_exact_at_its_points_and_straight_between_them) {
  const TableReading table(PointArray{{1, 10}, {3, 30}, {4, 0.1}});
  EXPECT_EQ(table.at(4), 0.1);
  EXPECT_EQ(table.at(2), 20);
}

TEST(table_reading, sorts_and_leaves_out_what_is_not_finite) {
  const TableReading table(PointArray{{3, 30}, {2, std::nan("")}, {1, 10}});
  EXPECT_EQ(table.at(2), 20);
}

TEST(table_reading, ends_at_its_ends_but_for_rounding) {
  const TableReading table(PointArray{{1, 10}, {3, 30}});
  EXPECT_EQ(table.at(0.999), std::nullopt);
  EXPECT_EQ(table.at(3.001), std::nullopt);
  EXPECT_EQ(table.at(3 * (1 + 1e-13)), 30);
}

TEST(table_reading, tells_no_per_cent_of_zero) {
  const TableReading table(PointArray{{1, 0}, {3, -10}});
  EXPECT_EQ(table.deviationPercent(1, 5), std::nullopt);
  EXPECT_EQ(table.deviationPercent(3, -9), 10);
}

TEST(table_reading, without_points_reads_nothing) {
  EXPECT_EQ(TableReading(PointArray()).at(1), std::nullopt);
}

}  // namespace
}  // namespace pelmora::calibration
