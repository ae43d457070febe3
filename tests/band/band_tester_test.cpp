// SPDX-License-Identifier: MIT
#include "band/band.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace pelmora {
namespace {

using Numbers = std::vector<double>;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

// A table that falls from 100 at x = 0 to 80 at x = 10, then rises to 90 at x = 20.
const Numbers tableX{0, 10, 20}, tableY{100, 80, 90};

class BandTest : public testing::Test {
 protected:
  bool inBand(const Numbers& x, const Numbers& y, float percent) {
    return tester->TestBand(x, y, tableX, tableY, percent);
  }
  std::unique_ptr<BandTester> tester = createBandTester();
};

class RatioTest : public BandTest {};
class PointTest : public BandTest {};

TEST_F(BandTest, points_may_be_read_in_any_order) {
  const Numbers x{15, 0, 20, 5, 10, 2.5, 15, 19, 0, 12.5};
  Numbers y{85, 100, 90, 90, 80, 95, 85, 89, 100, 82.5};
  EXPECT_TRUE(inBand(x, y, 0.001F));
  for (double& value : y) {
    value *= 1.01;
    EXPECT_FALSE(inBand(x, y, 0.5F));
    value /= 1.01;
  }
}

TEST_F(BandTest, the_table_is_read_linearly_between_its_points) {
  // 90 at x = 5: 1 % is 89.1 .. 90.9.
  EXPECT_TRUE(inBand({5}, {90.8}, 1));
  EXPECT_TRUE(inBand({5}, {89.2}, 1));
  EXPECT_FALSE(inBand({5}, {91}, 1));
  EXPECT_FALSE(inBand({5}, {89}, 1));
  EXPECT_TRUE(inBand({15}, {85.8}, 1));  // 85 there
}

TEST_F(BandTest, the_limits_belong_to_the_band) {
  EXPECT_TRUE(inBand({0}, {100.1}, 0.1F));
  EXPECT_TRUE(inBand({0}, {99.9}, 0.1F));
  EXPECT_FALSE(inBand({0}, {100.100001}, 0.1F));
  EXPECT_TRUE(inBand({10}, {80.036}, 0.045F));
  EXPECT_FALSE(inBand({10}, {80.0361}, 0.045F));
}

TEST_F(BandTest, a_band_of_zero_accepts_exact_points_only) {
  EXPECT_TRUE(inBand({0, 5, 20}, {100, 90, 90}, 0));
  EXPECT_FALSE(inBand({0, 5, 20}, {100, 90.0000000000001, 90}, 0));
}

TEST_F(BandTest, points_beside_the_table_are_not_tested) {
  EXPECT_TRUE(inBand({-1, 21}, {0, 0}, 1));
  EXPECT_FALSE(inBand({-1, 0, 21}, {0, 0, 0}, 1));
}

TEST_F(BandTest, a_point_at_an_end_that_rounding_moved_is_tested) {
  const double end = 20 * (1 + 3e-15);
  EXPECT_FALSE(inBand({end}, {95}, 1));
  EXPECT_TRUE(inBand({end}, {90.5}, 1));
  EXPECT_TRUE(inBand({20.001}, {95}, 1));  // beside the table
}

TEST_F(BandTest, the_order_of_the_table_does_not_matter) {
  float percent = 1;
  EXPECT_TRUE(
      tester->TestBand(Numbers{5}, Numbers{90}, Numbers{20, 0, 10}, Numbers{90, 100, 80}, percent));
  EXPECT_FALSE(
      tester->TestBand(Numbers{5}, Numbers{92}, Numbers{20, 10, 0}, Numbers{90, 80, 100}, percent));
}

TEST_F(BandTest, a_jump_of_the_table_allows_what_lies_between) {
  float percent = 0;
  const Numbers x{0, 1, 1, 2}, y{10, 10, 20, 20};
  EXPECT_TRUE(tester->TestBand(Numbers{1, 1, 1}, Numbers{10, 15, 20}, x, y, percent));
  EXPECT_FALSE(tester->TestBand(Numbers{1}, Numbers{21}, x, y, percent));
  EXPECT_FALSE(tester->TestBand(Numbers{1.5}, Numbers{15}, x, y, percent));
}

TEST_F(BandTest, a_table_of_one_point_is_tested_there) {
  float percent = 1;
  EXPECT_TRUE(tester->TestBand(Numbers{3, 4}, Numbers{7, 100}, Numbers{3}, Numbers{7}, percent));
  EXPECT_FALSE(tester->TestBand(Numbers{3}, Numbers{8}, Numbers{3}, Numbers{7}, percent));
}

TEST_F(BandTest, negative_curves_have_a_band_as_well) {
  float percent = 1;
  EXPECT_TRUE(
      tester->TestBand(Numbers{0}, Numbers{-100.9}, Numbers{0, 1}, Numbers{-100, -100}, percent));
  EXPECT_FALSE(
      tester->TestBand(Numbers{0}, Numbers{-98.9}, Numbers{0, 1}, Numbers{-100, -100}, percent));
}

TEST_F(BandTest, a_curve_of_zero_accepts_zero_only) {
  float percent = 10;
  EXPECT_TRUE(tester->TestBand(Numbers{0}, Numbers{0}, Numbers{0, 1}, Numbers{0, 0}, percent));
  EXPECT_FALSE(tester->TestBand(Numbers{0}, Numbers{1e-9}, Numbers{0, 1}, Numbers{0, 0}, percent));
}

TEST_F(BandTest, the_failure_names_the_count_the_worst_point_and_its_distance) {
  // 100 at 0, 90 at 5, 80 at 10: +2 %, -3 %, +1.25 % against a band of 1.5 %.
  EXPECT_FALSE(inBand({0, 5, 10}, {102, 87.3, 81}, 1.5F));
  EXPECT_EQ(
      tester->FailureText(),
      "Band test failed: 2 of 3 points outside the band of 1.5%; the worst is x = 5, y = 87.3, 3% "
      "below the curve.");
  EXPECT_TRUE(inBand({0}, {100}, 1.5F));
  EXPECT_EQ(tester->FailureText(), "");
}

TEST_F(BandTest, values_that_are_not_finite_fail) {
  EXPECT_FALSE(inBand({nan}, {100}, 1));
  EXPECT_FALSE(inBand({0}, {nan}, 1));
  EXPECT_FALSE(inBand({0}, {infinite}, 1));
  float percent = 1;
  EXPECT_FALSE(tester->TestBand(Numbers{0}, Numbers{1}, Numbers{0, 1}, Numbers{1, nan}, percent));
  EXPECT_EQ(tester->FailureText(),
            "Band test failed: the predicted curve has a point that is not finite.");
}

TEST_F(BandTest, what_is_no_table_or_no_band_fails) {
  float percent = 1;
  EXPECT_FALSE(tester->TestBand(Numbers{0}, Numbers{1}, Numbers{}, Numbers{}, percent));
  EXPECT_EQ(tester->FailureText(), "Band test failed: the predicted curve has no points.");
  EXPECT_FALSE(tester->TestBand(Numbers{0}, Numbers{1}, Numbers{1, 2}, Numbers{1}, percent));
  EXPECT_FALSE(tester->TestBand(Numbers{0, 1}, Numbers{1}, Numbers{1}, Numbers{1}, percent));
  EXPECT_FALSE(inBand({0}, {100}, -1));
  EXPECT_FALSE(inBand({0}, {100}, std::numeric_limits<float>::quiet_NaN()));
}

TEST_F(RatioTest, a_curve_that_falls_or_stays_level_passes) {
  EXPECT_TRUE(tester->TestRatioCurve(Numbers{1, 2, 3}, Numbers{5, 4, 4}));
  EXPECT_TRUE(tester->TestRatioCurve(Numbers{3, 2, 1}, Numbers{4, 4, 5}));
  EXPECT_TRUE(tester->TestRatioCurve(Numbers{1, 2, 2, 3}, Numbers{5, 3, 4, 3}));
  EXPECT_TRUE(tester->TestRatioCurve(Numbers{1}, Numbers{5}));
}

TEST_F(RatioTest, a_rise_fails_and_is_named) {
  EXPECT_FALSE(tester->TestRatioCurve(Numbers{1, 2, 3, 4}, Numbers{5, 4, 4.5, 4.25}));
  EXPECT_EQ(tester->FailureText(),
            "Ratio curve test failed: the curve rises at 2 of 4 points; most from x = 2, y = 4 to "
            "x = 3, y "
            "= 4.5.");
}

TEST_F(RatioTest, values_that_are_not_finite_fail) {
  EXPECT_FALSE(tester->TestRatioCurve(Numbers{1, 2}, Numbers{5, nan}));
  EXPECT_FALSE(tester->TestRatioCurve(Numbers{1, infinite}, Numbers{5, 4}));
  EXPECT_FALSE(tester->TestRatioCurve(Numbers{}, Numbers{}));
  EXPECT_FALSE(tester->TestRatioCurve(Numbers{1}, Numbers{}));
}

TEST_F(PointTest, a_point_is_tested_against_the_segment) {
  tester->BandWidth = 0.1F;
  tester->SetSegment(0, 100, 10, 80);
  EXPECT_TRUE(tester->TestPoint(5, 90.09));
  EXPECT_FALSE(tester->TestPoint(5, 90.1));
  EXPECT_EQ(
      tester->FailureText(),
      "Point test failed: 1 of 1 points outside the band of 0.1%; the worst is x = 5, y = 90.1, "
      "0.1111111% above the curve.");
  tester->BandWidth = 0.2F;
  EXPECT_TRUE(tester->TestPoint(5, 90.1));
}

TEST_F(PointTest, a_segment_may_run_downwards_in_x) {
  tester->BandWidth = 0.1F;
  tester->SetSegment(-1, 100, -11, 80);
  EXPECT_TRUE(tester->TestPoint(-6, 90.05));
  EXPECT_FALSE(tester->TestPoint(-6, 90.2));
}

TEST_F(PointTest, points_beside_the_segment_and_points_without_one_are_outside) {
  tester->BandWidth = 5;
  EXPECT_FALSE(tester->TestPoint(0, 0));
  tester->SetSegment(0, 100, 10, 80);
  EXPECT_FALSE(tester->TestPoint(11, 80));
  EXPECT_FALSE(tester->TestPoint(nan, 80));
  EXPECT_EQ(tester->FailureText(),
            "Point test failed: x = NaN, y = 80 cannot be tested against the segment.");
}

}  // namespace
}  // namespace pelmora
