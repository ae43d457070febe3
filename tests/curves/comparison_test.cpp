// SPDX-License-Identifier: MIT
#include <pelmora/calibration/curve.h>

#include <gtest/gtest.h>

#include <cmath>

namespace pelmora::calibration {
namespace {

constexpr double rounding = 1e-12;

TEST(comparison, covers_the_common_range_alone) {
  const Comparison found =
      compareCurves(PointArray{{1, 10}, {10, 10}}, PointArray{{5, 11}, {50, 11}});
  ASSERT_EQ(found.shifts.size(), 2U);
  EXPECT_EQ(found.shifts[0].roshko, 5);
  EXPECT_EQ(found.shifts[1].roshko, 10);
  EXPECT_NEAR(found.shifts[0].percent, 10, rounding);
}

TEST(comparison, reads_both_tables_linearly_at_every_point_of_either) {
  const Comparison found =
      compareCurves(PointArray{{1, 100}, {3, 300}}, PointArray{{1, 100}, {2, 220}, {3, 300}});
  ASSERT_EQ(found.shifts.size(), 3U);
  EXPECT_NEAR(found.shifts[1].percent, 10, rounding);
  EXPECT_EQ(found.highest.roshko, 2);
  EXPECT_NEAR(found.lowest.percent, 0, rounding);
}

// Shift 0 % at 1, 2 % at e, 2 % at e^3: the mean over ln x is (1 * 1 + 2 * 2) / 3.
TEST(comparison, averages_over_the_logarithm) {
  const double e = std::exp(1.0);
  const Comparison found = compareCurves(PointArray{{1, 100}, {e * e * e, 100}},
                                         PointArray{{1, 100}, {e, 102}, {e * e * e, 102}});
  EXPECT_NEAR(found.meanPercent, 5.0 / 3, rounding);
}

TEST(comparison, is_empty_where_the_curves_do_not_meet) {
  EXPECT_TRUE(
      compareCurves(PointArray{{1, 10}, {2, 10}}, PointArray{{3, 11}, {4, 11}}).shifts.empty());
  EXPECT_TRUE(compareCurves(PointArray{}, PointArray{{3, 11}, {4, 11}}).shifts.empty());
}

TEST(comparison, of_curves_that_touch_in_one_point_is_that_point) {
  const Comparison found =
      compareCurves(PointArray{{1, 10}, {2, 10}}, PointArray{{2, 11}, {4, 11}});
  ASSERT_EQ(found.shifts.size(), 1U);
  EXPECT_NEAR(found.meanPercent, 10, rounding);
}

}  // namespace
}  // namespace pelmora::calibration
