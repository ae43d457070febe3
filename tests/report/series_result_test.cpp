// The few numbers of a series, by hand.
// SPDX-License-Identifier: MIT
#include "report/report_model.h"

#include <gmock/gmock.h>

namespace pelmora::report::test {
namespace {

using testing::DoubleNear;
using testing::Optional;
using testing::SizeIs;

constexpr double rounding = 1e-12;

MeasuredPoint measured(double nominal, double deviation, double factor = 100) {
  MeasuredPoint point;
  point.roshko = nominal * 10;
  point.strouhal = factor;
  point.deviationPercent = deviation;
  point.reading = calibration::StandReading{.flow = nominal, .nominalFlow = nominal};
  return point;
}

// Up and down again over three flows.
RawPart upAndDown() {
  return {1,
          "oil",
          {measured(1, 0.10, 98), measured(2, 0.05, 100), measured(4, 0.00, 102),
           measured(4, -0.01, 102), measured(2, 0.02, 101), measured(1, -0.05, 99)}};
}

TEST(series_result, has_range_turndown_and_linearity) {
  const SeriesResult result = resultOf({upAndDown()}, std::nullopt);
  EXPECT_THAT(result.lowestRoshko, Optional(10.0));
  EXPECT_THAT(result.highestRoshko, Optional(40.0));
  EXPECT_THAT(result.turndown, Optional(4.0));
  EXPECT_THAT(result.meanFactor, Optional(100.0));
  EXPECT_THAT(result.linearityPercent, Optional(DoubleNear(2, rounding)));
  EXPECT_THAT(result.worstPercent, Optional(0.10));
  EXPECT_EQ(result.worstRoshko, 10);
  EXPECT_FALSE(result.passes.has_value());
}

TEST(series_result, tells_rising_from_falling_flow) {
  const SeriesResult result = resultOf({upAndDown()}, std::nullopt);
  ASSERT_THAT(result.flows, SizeIs(3));
  EXPECT_THAT(result.flows[0].repeatabilityPercent, Optional(DoubleNear(0.15, rounding)));
  EXPECT_THAT(result.flows[0].hysteresisPercent, Optional(DoubleNear(-0.15, rounding)));
  EXPECT_THAT(result.flows[1].hysteresisPercent, Optional(DoubleNear(-0.03, rounding)));
  EXPECT_THAT(result.flows[2].hysteresisPercent, Optional(DoubleNear(-0.01, rounding)));
  EXPECT_THAT(result.repeatabilityPercent, Optional(DoubleNear(0.15, rounding)));
  EXPECT_THAT(result.hysteresisPercent, Optional(DoubleNear(-0.15, rounding)));
}

TEST(series_result, states_no_hysteresis_where_the_flow_only_rose) {
  RawPart part{1, "oil", {measured(1, 0.1), measured(1, 0.3), measured(2, 0), measured(2, 0.1)}};
  const SeriesResult result = resultOf({part}, std::nullopt);
  EXPECT_THAT(result.repeatabilityPercent, Optional(DoubleNear(0.2, rounding)));
  EXPECT_FALSE(result.hysteresisPercent.has_value());
}

TEST(series_result, compares_fluids_with_themselves_alone) {
  RawPart water{1, "water", {measured(1, 0.1)}}, oil{2, "oil", {measured(1, 0.9)}};
  const SeriesResult result = resultOf({water, oil}, std::nullopt);
  EXPECT_THAT(result.flows, SizeIs(2));
  EXPECT_FALSE(result.repeatabilityPercent.has_value());
}

TEST(series_result, leaves_out_what_is_not_used) {
  RawPart part = upAndDown();
  part.points[0].state = calibration::PointState::cut;
  part.points[5].state = calibration::PointState::excluded;
  part.points[3].state = calibration::PointState::outsideRange;
  const SeriesResult result = resultOf({part}, 0.05);
  EXPECT_EQ(result.used, 3U);
  EXPECT_EQ(result.cut + result.excluded + result.outside, 3U);
  EXPECT_THAT(result.worstPercent, Optional(0.05));
  EXPECT_THAT(result.passes, Optional(true));
  EXPECT_THAT(resultOf({part}, 0.0499).passes, Optional(false));
}

// Nobody has decided that such a point is wrong: the verdict must not improve by itself.
TEST(series_result, counts_distrusted_points_in_the_verdict_alone) {
  RawPart part = upAndDown();
  part.points[2].state = calibration::PointState::distrusted;
  part.points[2].deviationPercent = -0.8;
  part.points[2].strouhal = 1e6;
  const SeriesResult result = resultOf({part}, 0.3);
  EXPECT_EQ(result.used, part.points.size() - 1);
  EXPECT_EQ(result.distrusted, 1U);
  EXPECT_THAT(result.worstPercent, Optional(-0.8));
  EXPECT_TRUE(result.worstIsDistrusted);
  EXPECT_THAT(result.passes, Optional(false));
  EXPECT_LT(result.meanFactor.value_or(1e9), 1e5);
}

}  // namespace
}  // namespace pelmora::report::test
