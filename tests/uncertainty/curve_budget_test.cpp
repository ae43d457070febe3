// The budget of a curve at one Roshko number, worked out by hand.
// SPDX-License-Identifier: MIT
#include "uncertainty/curve_budget.h"

#include "uncertainty/monte_carlo.h"
#include "uncertainty/stand_file.h"

#include <pelmora/calibration/failure.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace pelmora::uncertainty {
namespace {

// Derivatives are differences: the second order leaves so much.
constexpr double differences = 1e-4;

CurvePlace rotor() {
  CurvePlace place;
  place.roshko = 50;
  place.strouhal = 1300;
  place.slope = 0.4;  // Roshko dy/dRoshko = 20, 1.54 % of y
  return place;
}

Budget budgetOf(const CurvePlace& place, const std::string& stand) {
  return curveBudget(place, readStandUncertainty(stand, "stand.ini"));
}

double size(const Budget& budget, std::size_t row) {
  return std::abs(budget.rows[row].contribution);
}

TEST(curve_budget, has_the_flow_in_full) {
  const Budget budget = budgetOf(rotor(), "[flow]\nstandard = 0.02 %\n");
  EXPECT_NEAR(size(budget, 1), 1300 * 0.0002, 1300 * 0.0002 * differences);
}

TEST(curve_budget, has_the_viscosity_through_the_slope) {
  const Budget budget = budgetOf(rotor(), "[viscosity]\nstandard = 0.5 %\n");
  EXPECT_NEAR(size(budget, 1), 20 * 0.005, 20 * 0.005 * 0.01);
}

TEST(curve_budget, has_the_frequency_in_both_numbers) {
  const Budget budget = budgetOf(rotor(), "[frequency]\nstandard = 100 ppm\n");
  EXPECT_NEAR(size(budget, 1), (1300 - 20) * 1e-4, 1280e-4 * differences);
}

TEST(curve_budget, has_the_temperature_through_expansion_and_viscosity) {
  const Budget expansion = budgetOf(rotor(), "[temperature]\nstandard = 1 F\n");
  EXPECT_NEAR(size(expansion, 1), 1300 * 2.88e-5 - 20 * 1.92e-5, 1e-5);
  const Budget both =
      budgetOf(rotor(), "[temperature]\nstandard = 1 C\nviscosity change = -2 %/C\n");
  // 1.8 F; a viscosity believed 2 % too low moves Roshko up, and the expansion adds to it.
  EXPECT_NEAR(size(both, 1), std::abs(1300 * 2.88e-5 * 1.8 - 20 * (1.92e-5 * 1.8 + 0.02)), 0.01);
}

TEST(curve_budget, is_expanded_with_the_effective_degrees_of_freedom) {
  CurvePlace place = rotor();
  place.fitUncertainty = 0.3;
  place.fitDegrees = 9;
  const Budget budget = budgetOf(place, "[flow]\nstandard = 0.02 %\n");
  const double u2 = 0.09 + 0.26 * 0.26;
  EXPECT_NEAR(budget.standardUncertainty, std::sqrt(u2), 1e-4);
  EXPECT_NEAR(budget.degreesOfFreedom, u2 * u2 / (0.0081 / 9), 0.05);
  EXPECT_EQ(budget.coverageFactor, coverageFactor(twoSigmaProbability, budget.degreesOfFreedom));
  EXPECT_DOUBLE_EQ(budget.expanded, budget.coverageFactor * budget.standardUncertainty);
  EXPECT_DOUBLE_EQ(budget.expandedPercent, budget.expanded / 13);
}

TEST(curve_budget, takes_absolute_uncertainties_at_the_operating_point) {
  CurvePlace place = rotor();
  place.operating.flow = units::readMeasure("120 l/min");
  place.operating.viscosity = units::readMeasure("1.2 cSt");
  const Budget flow = budgetOf(place, "[flow]\nstandard = 0.006 m3/h\n");  // 0.1 l/min
  EXPECT_NEAR(size(flow, 1), 1300 * 0.1 / 120, 1e-3);
  const Budget viscosity = budgetOf(place, "[viscosity]\nstandard = 0.012 mm2/s\n");
  EXPECT_NEAR(size(viscosity, 1), 20 * 0.01, 1e-3);
}

TEST(curve_budget, says_which_value_an_absolute_uncertainty_misses) {
  try {
    (void)budgetOf(rotor(), "[flow]\nstandard = 0.4 gpm\n");
    FAIL() << "nothing was refused";
  } catch (const calibration::BadData& failure) {
    EXPECT_STREQ(failure.what(),
                 "the uncertainty of the reference flow is stated in gpm, and its value is not "
                 "known here");
    EXPECT_EQ(failure.remedy(),
              "state the uncertainty in %, give the volume flow, or record the units of what "
              "the stand read");
  }
}

TEST(curve_budget, is_never_below_the_capability_of_the_laboratory) {
  const Budget low = budgetOf(rotor(), "[stand]\ncmc = 0.05 %\n[flow]\nstandard = 0.01 %\n");
  EXPECT_TRUE(low.isCmc);
  EXPECT_DOUBLE_EQ(low.expandedPercent, 0.05);
  EXPECT_NEAR(low.standardUncertainty, 0.13, 1e-4);  // what was found stays visible
  const Budget high = budgetOf(rotor(), "[stand]\ncmc = 0.05 %\n[flow]\nstandard = 0.03 %\n");
  EXPECT_FALSE(high.isCmc);
  EXPECT_NEAR(high.expandedPercent, 0.06, 1e-5);
}

TEST(curve_budget, includes_the_reading_of_a_table) {
  CurvePlace place = rotor();
  place.readingErrorPercent = 0.05;
  const Budget budget = budgetOf(place, "[flow]\nstandard = 0.02 %\n");
  ASSERT_EQ(budget.rows.size(), 3U);
  EXPECT_EQ(budget.rows[2].cause, Cause::reading);
  EXPECT_NEAR(size(budget, 2), 1300 * 0.0005 / std::sqrt(3.0), 1e-4);
}

CurvePlace quotient(SeriesKind kind, double value) {
  CurvePlace place;
  place.kind = kind;
  place.roshko = 100;
  place.strouhal = value;
  place.slope = 1e-4;  // Roshko dy/dRoshko = 0.01
  return place;
}

TEST(curve_budget_of_a_quotient, knows_no_flow) {
  for (const SeriesKind kind : {SeriesKind::quotientAB, SeriesKind::quotientBA}) {
    const Budget budget = budgetOf(quotient(kind, 0.97), "[flow]\nstandard = 0.5 %\n");
    EXPECT_EQ(budget.standardUncertainty, 0);
  }
}

TEST(curve_budget_of_a_quotient, has_a_common_frequency_in_roshko_alone) {
  const Budget budget =
      budgetOf(quotient(SeriesKind::quotientBA, 1.03), "[frequency]\nstandard = 0.1 %\n");
  EXPECT_NEAR(size(budget, 1), 0.01 * 1e-3, 1e-8);
}

TEST(curve_budget_of_a_quotient, has_the_frequencies_of_two_counters) {
  const Budget budget = budgetOf(quotient(SeriesKind::quotientAB, 0.8),
                                 "[frequency]\nstandard = 0.1 %\nrotors = independent\n");
  // Rotor A has 0.8 / 1.8 of the Roshko number.
  const double a = 0.8 - 0.01 * 0.8 / 1.8, b = 0.8 + 0.01 / 1.8;
  EXPECT_NEAR(size(budget, 1), 1e-3 * std::hypot(a, b), 1e-6);
}

TEST(curve_budget_of_a_quotient, has_the_scatter_of_both_rotors) {
  const std::string scatter = "[repeatability]\nstandard = 0.03 %\n";
  const Budget apart = budgetOf(quotient(SeriesKind::quotientBA, 1.03), scatter);
  EXPECT_NEAR(size(apart, 1), 1.03 * 0.0003 * std::sqrt(2.0), 1e-7);
  const Budget common =
      budgetOf(quotient(SeriesKind::quotientBA, 1.03), scatter + "rotors = common\n");
  EXPECT_NEAR(size(common, 1), 0, 1e-9);
}

// 0.03 % of each rotor by 6 observations: both together have twice 5 degrees of freedom, so that
// the formula of Welch and Satterthwaite gives the same of the rows as they are listed.
TEST(curve_budget_of_a_quotient, lists_the_degrees_of_freedom_of_both_rotors) {
  const Budget budget =
      budgetOf(quotient(SeriesKind::quotientBA, 1.03),
               "[repeatability]\nstandard = 0.03 %\ntype = A\ndegrees of freedom = 5\n");
  EXPECT_NEAR(budget.rows[1].degreesOfFreedom, 10, 1e-6);
  EXPECT_NEAR(budget.degreesOfFreedom, 10, 1e-6);
}

TEST(curve_budget_of_a_quotient, needs_no_flow_for_what_cancels) {
  const Budget budget =
      budgetOf(quotient(SeriesKind::quotientBA, 1.03), "[flow]\nstandard = 0.001 gal/s\n");
  EXPECT_EQ(budget.standardUncertainty, 0);
}

TEST(curve_budget_of_a_quotient, may_have_a_capability_of_its_own) {
  const std::string flow = "[flow]\nstandard = 0.01 %\n";
  const CurvePlace place = quotient(SeriesKind::quotientBA, 1.03);
  EXPECT_DOUBLE_EQ(budgetOf(place, "[stand]\ncmc = 0.05 %\n" + flow).expandedPercent, 0.05);
  EXPECT_DOUBLE_EQ(
      budgetOf(place, "[stand]\ncmc = 0.05 %\nquotient cmc = 0.02 %\n" + flow).expandedPercent,
      0.02);
}

TEST(curve_budget, refuses_places_off_the_curve) {
  CurvePlace place = rotor();
  place.roshko = 0;
  EXPECT_THROW((void)budgetOf(place, "[flow]\nstandard = 1 %\n"), calibration::BadData);
  place = rotor();
  place.strouhal = std::nan("");
  EXPECT_THROW((void)budgetOf(place, "[flow]\nstandard = 1 %\n"), calibration::BadData);
}

// One rectangular row dominates: 0.9545 of its half-width, and not two standard uncertainties.
TEST(curve_budget, takes_the_coverage_factor_from_a_distribution_that_dominates) {
  CurvePlace place = rotor();
  place.fitUncertainty = 0.01;
  const std::string flow = "[flow]\nhalf-width = 0.1 %\ndistribution = ";
  const Budget rectangular = budgetOf(place, flow + "rectangular\n");
  EXPECT_TRUE(rectangular.isConvolved);
  EXPECT_NEAR(rectangular.coverageFactor, 0.9545 * std::sqrt(3.0), 0.005);
  // P(|x| <= h) = 1 - (1 - h)^2 of a triangle of half-width 1: h = 0.7867.
  const Budget triangular = budgetOf(place, flow + "triangular\n");
  EXPECT_NEAR(triangular.coverageFactor, 0.7867 * std::sqrt(6.0), 0.06);
  EXPECT_FALSE(budgetOf(place, "[flow]\nstandard = 0.02 %\n").isConvolved);
}

TEST(curve_budget, is_checked_by_monte_carlo_on_the_same_measurement) {
  CurvePlace place = rotor();
  place.fitUncertainty = 0.2;
  place.fitDegrees = 11;
  const StandUncertainty stand = readStandUncertainty(
      "[flow]\nhalf-width = 0.1 %\ndistribution = rectangular\n"
      "[temperature]\nhalf-width = 4 C\ndistribution = U-shaped\nviscosity change = 1 %/C\n",
      "");
  const CurveMeasurement measured = curveMeasurement(place, stand);
  const MonteCarloResult drawn =
      monteCarlo(measured.model, measured.inputs, measured.correlations, {.mostTrials = 200'000});
  const Budget budget = curveBudget(place, stand);
  EXPECT_NEAR(budget.expanded / drawn.halfWidth(), 1, 0.05);
}

}  // namespace
}  // namespace pelmora::uncertainty
