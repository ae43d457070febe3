// SPDX-License-Identifier: MIT
#include "uncertainty/pair_budget.h"

#include "uncertainty/stand_file.h"

#include <pelmora/calibration/failure.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace pelmora::uncertainty {
namespace {

// Derivatives are differences.
constexpr double differences = 1e-4;

Budget flat(double strouhal, double fit, const std::string& stand) {
  CurvePlace place;
  place.roshko = 50;
  place.strouhal = strouhal;
  place.fitUncertainty = fit;
  return curveBudget(place, readStandUncertainty(stand, ""));
}

const std::string flowAlone = "[stand]\nname = S\n[flow]\nstandard = 0.02 %\n";

TEST(pair_budget, cancels_the_flow_in_the_quotient_of_two_rotors) {
  const Budget a = flat(1300, 0, flowAlone), b = flat(1350, 0, flowAlone);
  const double quotient = 1350.0 / 1300;
  const Budget pair =
      pairBudget(quotient, {&a, -quotient / 1300}, {&b, 1.0 / 1300}, SharedBy::rotors);
  EXPECT_NEAR(pair.standardUncertainty, 0, 1e-9);
}

TEST(pair_budget, adds_the_flow_in_the_sum_of_two_rotors) {
  const Budget a = flat(1300, 0, flowAlone), b = flat(1350, 0, flowAlone);
  const Budget pair = pairBudget(2650, {&a, 1}, {&b, 1}, SharedBy::rotors);
  EXPECT_NEAR(pair.standardUncertainty, 2650 * 0.0002, 2650 * 0.0002 * differences);
}

TEST(pair_budget, adds_what_is_independent_in_quadrature) {
  const std::string scatter = flowAlone + "[repeatability]\nstandard = 0.03 %\n";
  const Budget a = flat(1300, 0.4, scatter), b = flat(1300, 0.3, scatter);
  const Budget pair = pairBudget(0, {&a, 1}, {&b, -1}, SharedBy::rotors);
  EXPECT_NEAR(pair.standardUncertainty, std::hypot(0.5, 1300 * 0.0003 * std::sqrt(2.0)), 1e-4);
}

TEST(pair_budget, removes_the_stand_from_the_shift_between_two_calibrations) {
  const std::string stand = flowAlone +
                            "[viscosity]\nstandard = 0.5 %\n"
                            "[flow: drift]\nstandard = 0.01 %\n"
                            "calibrations = independent\n";
  const Budget then = flat(1300, 0.1, stand), now = flat(1302, 0.1, stand);
  const Budget shift = pairBudget(2, {&now, 1}, {&then, -1}, SharedBy::calibrations);
  EXPECT_NEAR(shift.standardUncertainty, std::sqrt(0.02 + 2 * 0.13 * 0.13), 1e-3);
}

TEST(pair_budget, shares_nothing_between_two_stands) {
  const Budget a = flat(1300, 0, flowAlone);
  const Budget b = flat(1300, 0, "[stand]\nname = T\n[flow]\nstandard = 0.02 %\n");
  const Budget shift = pairBudget(0, {&a, 1}, {&b, -1}, SharedBy::calibrations);
  EXPECT_NEAR(shift.standardUncertainty, 1300 * 0.0002 * std::sqrt(2.0), 1e-4);
  EXPECT_EQ(shift.stand, "S and T");
}

TEST(pair_budget, keeps_rows_that_only_one_of_them_has) {
  const Budget a = flat(1300, 0, flowAlone);
  const Budget b = flat(1300, 0, "[stand]\nname = S\n[model]\nstandard = 0.03 %\n");
  const Budget sum = pairBudget(2600, {&a, 1}, {&b, 1}, SharedBy::rotors);
  EXPECT_NEAR(sum.standardUncertainty, std::hypot(0.26, 0.39), 1e-4);
  EXPECT_EQ(sum.rows.size(), 3U);
}

TEST(pair_budget, refuses_two_probabilities) {
  const Budget a = flat(1300, 0, flowAlone);
  const Budget b = flat(1300, 0, "[stand]\nprobability = 95 %\n[flow]\nstandard = 1 %\n");
  EXPECT_THROW((void)pairBudget(1, {&a, 1}, {&b, 1}, SharedBy::rotors), calibration::BadData);
}

}  // namespace
}  // namespace pelmora::uncertainty
