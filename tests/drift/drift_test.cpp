// SPDX-License-Identifier: MIT
#include "drift/drift.h"

#include "uncertainty/stand_file.h"

#include <pelmora/calibration/failure.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>

namespace pelmora::drift {
namespace {

const std::string stand =
    "[stand]\nname = S\n[flow]\nstandard = 0.04 %\n[reproducibility]\nstandard = 0.01 %\n";

uncertainty::Budget budgetOf(double value, double fitPercent, const std::string& text = stand) {
  uncertainty::CurvePlace place;
  place.roshko = 100;
  place.strouhal = value;
  place.fitUncertainty = value * fitPercent / 100;
  return uncertainty::curveBudget(place, uncertainty::readStandUncertainty(text, ""));
}

// Without the flow, which both share: two fits of 0.02 % and two reproducibilities of 0.01 %.
TEST(shift, has_an_uncertainty_without_the_common_stand) {
  const Shift shift = shiftBetween(budgetOf(1300, 0.02), budgetOf(1301.3, 0.02));
  EXPECT_NEAR(shift.percent, 0.1, 1e-9);
  EXPECT_NEAR(shift.uncertaintyPercent, 2 * std::sqrt(2 * (0.0004 + 0.0001)), 2e-4);
  EXPECT_NEAR(shift.en, 0.1 / shift.uncertaintyPercent, 1e-9);
  EXPECT_TRUE(shift.isSignificant());
  EXPECT_FALSE(shiftBetween(budgetOf(1300, 0.02), budgetOf(1299.5, 0.02)).isSignificant());
}

TEST(shift, has_all_of_both_stands_where_they_differ) {
  std::string other = stand;
  other.replace(other.find("S\n"), 1, "T");
  const Shift shift = shiftBetween(budgetOf(1300, 0.02), budgetOf(1301.3, 0.02, other));
  EXPECT_NEAR(shift.uncertaintyPercent, 2 * std::sqrt(2 * (0.0016 + 0.0004 + 0.0001)), 2e-4);
  EXPECT_FALSE(shift.isSignificant());
}

TEST(shift, is_refused_without_any_uncertainty) {
  const std::string flow = "[flow]\nstandard = 0.04 %\n";
  EXPECT_THROW((void)shiftBetween(budgetOf(1300, 0, flow), budgetOf(1300, 0, flow)),
               calibration::BadData);
  EXPECT_THROW((void)shiftBetween({}, budgetOf(1300, 0.02)), calibration::BadData);
}

// The flow-rate example of the e-Handbook, 6.3.2.2: ten values, mean 50.81, mean moving range
// 1.8778, limits 45.817 and 55.804.
TEST(control_limits, reproduce_the_example_of_the_handbook) {
  const std::array values{49.6, 47.6, 49.9, 51.3, 47.8, 51.2, 52.6, 52.4, 53.6, 52.1};
  const ControlLimits limits = controlLimits(values, 0.1);
  EXPECT_NEAR(limits.centre, 50.81, 5e-3);
  EXPECT_NEAR(limits.low, 45.817, 5e-3);
  EXPECT_NEAR(limits.high, 55.804, 5e-3);
  EXPECT_FALSE(limits.isFromUncertainty);
}

TEST(control_limits, are_never_narrower_than_the_uncertainty_of_a_calibration) {
  const std::array values{1300.0, 1300.1, 1300.0, 1300.1, 1300.0, 1300.1};
  const ControlLimits quiet = controlLimits(values, 0.5);
  EXPECT_TRUE(quiet.isFromUncertainty);
  EXPECT_DOUBLE_EQ(quiet.sigma, 0.5);
  const std::array few{1300.0, 1300.1};
  EXPECT_TRUE(controlLimits(few, 0.5).isFromUncertainty);
  EXPECT_THROW((void)controlLimits(std::array{1300.0}, 0.5), calibration::BadData);
  EXPECT_THROW((void)controlLimits(std::array{1300.0, std::nan("")}, 0.5), calibration::BadData);
}

TEST(control_limits, say_where_their_standard_deviation_comes_from) {
  const ControlLimits wide = controlLimits(std::array{1300.0, 1301.0}, 0.5);
  EXPECT_NEAR(wide.sigma, 1 / 1.128, 5e-4);  // the handbook's d2 of two values
  EXPECT_FALSE(wide.isFromUncertainty);
  const ControlLimits equal = controlLimits(std::array{1300.0, 1300.0}, 0.0);
  EXPECT_EQ(equal.sigma, 0);
}

TEST(independent_part, leaves_out_what_calibrations_share) {
  EXPECT_NEAR(independentPart(budgetOf(1000, 0.02)), 10 * std::hypot(0.02, 0.01), 1e-4);
}

}  // namespace
}  // namespace pelmora::drift
