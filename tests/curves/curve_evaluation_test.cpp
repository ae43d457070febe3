// SPDX-License-Identifier: MIT
#include "curves/curve_evaluation.h"

#include <pelmora/calibration/failure.h>

#include <gtest/gtest.h>

namespace pelmora::calibration {
namespace {

// Strouhal falls from 10 to 4 along straight lines of slope -2 and -0.5.
const std::vector<CurvePoint> falling{{1, 10, 0.1, 0.2}, {3, 6, 0.3, 0.6}, {7, 4, 0.3, 0.6}};
// The same with Strouhal turning at Roshko 3.
const std::vector<CurvePoint> turning{{1, 10, {}, {}}, {3, 6, {}, {}}, {7, 8, {}, {}}};

template <class Body>
std::string failureOf(Body&& body) {
  try {
    body();
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), 5);
    return error.what();
  }
  return {};
}

TEST(curve_evaluation, reads_linearly_between_points) {
  const CurveValue value = strouhalAt(falling, 2);
  EXPECT_DOUBLE_EQ(value.strouhal, 8);
  EXPECT_DOUBLE_EQ(*value.confidence, 0.2);
  EXPECT_DOUBLE_EQ(*value.prediction, 0.4);
  EXPECT_FALSE(value.isExtrapolated);
  EXPECT_DOUBLE_EQ(strouhalAt(falling, 5).strouhal, 5);
}

TEST(curve_evaluation, has_the_points_themselves) {
  for (const CurvePoint& point : falling) {
    EXPECT_EQ(strouhalAt(falling, point.roshko).strouhal, point.strouhal);
    EXPECT_EQ(roshkoAt(falling, point.strouhal).roshko, point.roshko);
    EXPECT_FALSE(strouhalAt(falling, point.roshko).isExtrapolated);
  }
}

TEST(curve_evaluation, goes_on_straight_beyond_the_ends_without_a_band) {
  const CurveValue below = strouhalAt(falling, 0), above = strouhalAt(falling, 9);
  EXPECT_DOUBLE_EQ(below.strouhal, 12);
  EXPECT_DOUBLE_EQ(above.strouhal, 3);
  for (const CurveValue& value : {below, above, roshkoAt(falling, 11)}) {
    EXPECT_TRUE(value.isExtrapolated);
    EXPECT_FALSE(value.confidence);
    EXPECT_FALSE(value.prediction);
  }
}

TEST(curve_evaluation, finds_roshko_with_its_own_bands) {
  const CurveValue value = roshkoAt(falling, 5);
  EXPECT_DOUBLE_EQ(value.roshko, 5);
  EXPECT_DOUBLE_EQ(*value.confidence, 0.6);  // 0.3 over the slope 0.5
  EXPECT_DOUBLE_EQ(*value.prediction, 1.2);
}

TEST(curve_evaluation, tells_where_a_curve_turns) {
  EXPECT_EQ(failureOf([] { (void)roshkoAt(turning, 7); }),
            "The curve turns at Roshko 3: several Roshko numbers have the same Strouhal number.");
  EXPECT_DOUBLE_EQ(strouhalAt(turning, 5).strouhal, 7);
}

TEST(curve_evaluation, says_what_to_do_where_a_curve_turns) {
  try {
    (void)roshkoAt(turning, 7);
    FAIL();
  } catch (const BadData& failure) {
    EXPECT_NE(failure.remedy().find("range"), std::string::npos);
  }
}

TEST(curve_evaluation, finds_no_roshko_number_below_zero) {
  EXPECT_DOUBLE_EQ(roshkoAt(falling, 11.5).roshko, 0.25);
  EXPECT_EQ(
      failureOf([] { (void)roshkoAt(falling, 12.5); }),
      "Extended straight beyond its ends, the curve does not reach Strouhal 12.5 at any Roshko "
      "number above 0.");
}

TEST(curve_evaluation, has_no_band_where_the_points_have_none) {
  EXPECT_FALSE(strouhalAt(turning, 2).confidence);
}

TEST(curve_evaluation, refuses_what_is_no_table) {
  EXPECT_NE(failureOf([] { (void)strouhalAt(std::vector<CurvePoint>{{1, 2, {}, {}}}, 1); }), "");
  EXPECT_NE(failureOf([] {
              (void)strouhalAt(std::vector<CurvePoint>{{1, 2, {}, {}}, {1, 3, {}, {}}}, 1);
            }),
            "");
}

}  // namespace
}  // namespace pelmora::calibration
