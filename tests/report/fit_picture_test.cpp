// The plot of a fit that is in no database.
// SPDX-License-Identifier: MIT
#include <pelmora/calibration/report.h>

#include <gmock/gmock.h>

#include <cmath>
#include <regex>

namespace pelmora::calibration {
namespace {

using testing::HasSubstr;
using testing::Not;

PointArray straightInTheLogarithm(std::size_t count) {
  PointArray points(count);
  for (std::size_t i = 0; i < count; ++i) {
    points(i, 0) = 100 * std::pow(1.2, static_cast<double>(i));
    points(i, 1) = 2 + 0.1 * std::log(points(i, 0));
  }
  return points;
}

std::size_t countOf(const std::string& text, const std::string& pattern) {
  const std::regex expression(pattern);
  return static_cast<std::size_t>(
      std::distance(std::sregex_iterator(text.begin(), text.end(), expression), {}));
}

TEST(plot_of_a_fit, shows_its_points_and_its_name) {
  Fit fitted = fit(std::vector<PointArray>{straightInTheLogarithm(12)});
  ASSERT_TRUE(fitted.accepted()) << fitted.reason();
  fitted.series = "Rotor <A>";
  const std::string picture = plotOf(fitted);
  EXPECT_THAT(picture, HasSubstr("<svg"));
  EXPECT_THAT(picture, HasSubstr("Rotor &lt;A&gt;"));
  EXPECT_THAT(picture, Not(HasSubstr("<script")));
}

TEST(plot_of_a_fit, shows_the_parts_that_were_merged_and_names_no_meter) {
  const PointArray whole = straightInTheLogarithm(12);
  PointArray low(7), high(7);
  for (std::size_t i = 0; i < 7; ++i) {
    for (std::size_t column = 0; column < 2; ++column) {
      low(i, column) = whole(i, column);
      high(i, column) = whole(i + 5, column);
    }
  }
  const std::string picture = plotOf(fit(std::vector<PointArray>{low, high}));
  EXPECT_THAT(picture, HasSubstr("Raw 1"));
  EXPECT_THAT(picture, HasSubstr("Raw 2"));
  EXPECT_THAT(picture, Not(HasSubstr("Meter")));
}

TEST(plot_of_a_fit, marks_the_points_that_the_merge_left_out) {
  Fit fitted = fit(std::vector<PointArray>{straightInTheLogarithm(12)});
  const std::size_t before = countOf(plotOf(fitted), "class=\"dots cut");
  fitted.cut = {{1, 13, 250, 2.6, {}}, {1, 14, 260, 2.7, {}}};
  EXPECT_EQ(before, 0U);
  EXPECT_GE(countOf(plotOf(fitted), "class=\"dots cut"), 1U);
}

TEST(plot_of_a_fit, is_there_without_a_curve) {
  PointArray points = straightInTheLogarithm(12);
  points(5, 1) = 9;
  const Fit fitted = fit(std::vector<PointArray>{points}, {.choice = Choice::adjustedR2});
  ASSERT_FALSE(fitted.accepted());
  EXPECT_THAT(plotOf(fitted), HasSubstr("<svg"));
}

}  // namespace
}  // namespace pelmora::calibration
