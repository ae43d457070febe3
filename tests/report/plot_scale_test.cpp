// SPDX-License-Identifier: MIT
#include "report/plot_scale.h"

#include <gmock/gmock.h>

#include <cmath>

namespace pelmora::report {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> labels(const PlotScale& scale, int wanted = 5) {
  std::vector<std::string> list;
  for (const Tick& tick : scale.ticks(wanted)) {
    if (!tick.label.empty()) list.push_back(tick.label);
  }
  return list;
}

TEST(plot_scale, labels_the_decades_of_a_wide_range) {
  const PlotScale scale = PlotScale::logarithmic({0.36, 1114}, 0);
  EXPECT_THAT(labels(scale), ElementsAre("1", "10", "100", "1000"));
  EXPECT_EQ(scale.ticks(5).size(), 34U);  // .4 to .9, 1 to 9, 10 to 90, 100 to 900, 1000
}

TEST(plot_scale, labels_one_two_and_five_of_a_narrow_range) {
  EXPECT_THAT(labels(PlotScale::logarithmic({1.5, 60}, 0)),
              ElementsAre("2", "5", "10", "20", "50"));
}

TEST(plot_scale, ticks_less_than_half_a_decade_like_a_linear_axis) {
  EXPECT_THAT(labels(PlotScale::logarithmic({10, 15}, 0)),
              ElementsAre("10", "11", "12", "13", "14", "15"));
}

TEST(plot_scale, is_linear_where_a_value_has_no_logarithm) {
  EXPECT_FALSE(PlotScale::logarithmic({-1, 10}, 0).isLog());
  EXPECT_FALSE(PlotScale::logarithmic({0, 10}, 0).isLog());
}

TEST(plot_scale, places_values_between_its_ends) {
  EXPECT_NEAR(PlotScale::logarithmic({1, 100}, 0).share(10), 0.5, 1e-12);
  EXPECT_NEAR(PlotScale::linear({-1, 3}, 0).share(0), 0.25, 1e-12);
}

TEST(plot_scale, keeps_a_margin_and_a_width_for_equal_values) {
  const PlotScale scale = PlotScale::linear({0, 10}, 0.1);
  EXPECT_NEAR(scale.low(), -1, 1e-12);
  EXPECT_NEAR(scale.high(), 11, 1e-12);
  const PlotScale single = PlotScale::linear({5, 5}, 0.1);
  EXPECT_LT(single.low(), single.high());
}

TEST(plot_scale, leaves_out_what_is_not_finite) {
  const PlotScale scale = PlotScale::linear({std::nan(""), 1, INFINITY, 2}, 0);
  EXPECT_EQ(scale.low(), 1);
  EXPECT_EQ(scale.high(), 2);
}

TEST(plot_scale, writes_zero_without_a_sign) {
  EXPECT_THAT(labels(PlotScale::linear({-0.3, 0.3}, 0), 3), ElementsAre("-0.2", "0.0", "0.2"));
}

}  // namespace
}  // namespace pelmora::report
