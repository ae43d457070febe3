// What a report states as uncertainty.
// SPDX-License-Identifier: MIT
#include "report/stated_uncertainty.h"

#include "report/printed_values.h"

#include <gmock/gmock.h>

#include <cmath>

namespace pelmora::report::test {
namespace {

using calibration::Budget;
using calibration::FittedCurve;
using testing::HasSubstr;
using testing::IsEmpty;

Budget budgetOf(double value, double expanded, double cmcPercent = 0) {
  Budget budget;
  budget.value = value;
  budget.expanded = expanded;
  budget.expandedPercent = 100 * expanded / std::abs(value);
  budget.cmcPercent = cmcPercent;
  budget.coverageFactor = 2;
  budget.probability = 0.9545;
  return budget;
}

// Points of 1000 (1 + 0.02 ln x), every other one 0.01 % above and below.
calibration::Fit fitOfPoints(const calibration::FitSettings& settings = {}) {
  PointArray points(40);
  for (std::size_t i = 0; i < points.size(); ++i) {
    const double x = 10 * std::pow(100.0, static_cast<double>(i) / 39);
    points(i, 0) = x;
    points(i, 1) = 1000 * (1 + 0.02 * std::log(x)) * (1 + (i % 2 == 0 ? 1e-4 : -1e-4));
  }
  return calibration::fit({&points, 1}, settings);
}

calibration::StandStatement statement(const std::string& text) { return {text, "stand.ini"}; }

TEST(stated_uncertainty, has_two_digits_everywhere) {
  const auto made = stated(budgetOf(200, 0.0996));
  ASSERT_TRUE(made.has_value());
  EXPECT_EQ(printedUncertainty(made->expanded), "0.10");
  EXPECT_EQ(printedUncertainty(made->percent), "0.050");
}

TEST(stated_uncertainty, is_never_rounded_below_the_cmc) {
  // 0.0504 % of 1000 would be rounded to 0.50.
  const auto made = stated(budgetOf(1000, 0.504, 0.0504));
  EXPECT_EQ(printedUncertainty(made->expanded), "0.51");
  EXPECT_EQ(printedUncertainty(made->percent), "0.051");
}

TEST(stated_uncertainty, is_absent_without_a_budget) {
  EXPECT_FALSE(stated(std::nullopt).has_value());
  EXPECT_FALSE(stated(budgetOf(1000, 0)).has_value());
}

TEST(stated_uncertainty, spans_only_values_that_all_have_one) {
  auto low = stated(budgetOf(1000, 0.5)), high = stated(budgetOf(1000, 0.62));
  high->coverageFactor = 2.06;
  const auto span = spanOf({high, low, high});
  ASSERT_TRUE(span.has_value());
  EXPECT_EQ(percentSpanText(*span), "0.050 to 0.062");
  EXPECT_EQ(coverageText(*span), "k = 2.00 to 2.06, 95.45 %");
  EXPECT_EQ(percentSpanText(*spanOf({low, low})), "0.050");
  EXPECT_FALSE(spanOf({low, std::nullopt}).has_value());
  EXPECT_FALSE(spanOf({}).has_value());
}

TEST(stated_uncertainty, of_a_curve_without_a_stand_says_so) {
  const UncertaintyStatement made = uncertaintyStatementOf(FittedCurve(fitOfPoints()));
  ASSERT_TRUE(made.isStated());
  EXPECT_THAT(uncertaintyText(made), HasSubstr("nothing of the stand: no uncertainty"));
  EXPECT_FALSE(made.hasStand);
}

TEST(stated_uncertainty, is_at_least_that_of_the_stand) {
  const FittedCurve curve(fitOfPoints(),
                          statement("[stand]\nname = S\n[flow]\nexpanded = 0.1 %\nk = 2\n"));
  const UncertaintyStatement made = uncertaintyStatementOf(curve);
  ASSERT_TRUE(made.isStated());
  EXPECT_GE(made.span.lowestPercent, 0.1);
  EXPECT_LT(made.span.highestPercent, 0.15);
  EXPECT_EQ(made.curve.size(), curve.table().points().size());
  EXPECT_THAT(uncertaintyText(made), HasSubstr("everything that the stand states (S)."));
}

TEST(stated_uncertainty, is_not_stated_where_the_stand_needs_a_value_that_is_not_known) {
  const UncertaintyStatement made = uncertaintyStatementOf(
      FittedCurve(fitOfPoints(), statement("[stand]\nname = S\n[flow]\nstandard = 0.001 gal/s\n")));
  EXPECT_FALSE(made.isStated());
  EXPECT_THAT(made.whyNone, testing::Not(IsEmpty()));
  EXPECT_THAT(made.curve, IsEmpty());
}

TEST(stated_uncertainty, is_not_stated_of_a_table_alone) {
  const PointArray table{{1, 10}, {100, 1000}};
  const UncertaintyStatement made =
      uncertaintyStatementOf(FittedCurve(calibration::Curve(table), "Rotor A"));
  EXPECT_EQ(made.whyNone, "a new fit does not give the stored curve");
}

// The points scatter by 0.01 %: a single one is less certain than the curve through 40 of them.
TEST(stated_uncertainty, of_a_single_point_contains_its_scatter) {
  const FittedCurve curve(fitOfPoints({.choice = calibration::Choice::adjustedR2}));
  const double x = 100, y = curve(x);
  const auto point = curve.measured({&x, 1}, {&y, 1});
  ASSERT_TRUE(point.front().has_value());
  EXPECT_EQ(point.front()->rows.front().cause, "scatter");
  EXPECT_NEAR(point.front()->rows.front().standardUncertainty, 1e-4 * y, 0.15e-4 * y);
  EXPECT_GT(point.front()->expanded, curve.at(x).budget->expanded);
  EXPECT_THAT(point.front()->contents(), HasSubstr("the scatter of one point"));
  const double beyond = 1e6;
  EXPECT_FALSE(curve.measured({&beyond, 1}, {&y, 1}).front().has_value());
}

}  // namespace
}  // namespace pelmora::report::test
