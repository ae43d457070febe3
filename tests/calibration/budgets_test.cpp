// Curves evaluated with their uncertainty, and the uncertainty of a stand kept with a calibration.
// SPDX-License-Identifier: MIT
#include "tests/calibration/service_fixture.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace pelmora::calibration::test {
namespace {

using testing::HasSubstr;

const std::string stand =
    "[stand]\nname = Stand 3\ncmc = 0.02 %\n[flow]\nexpanded = 0.06 %\nk = 2\n"
    "[frequency]\nstandard = 0.001 %\n[viscosity]\nhalf-width = 1 %\ndistribution = rectangular\n";

double truthAt(double x) {
  const double log = std::log10(x);
  return 1300 + 20 * log - 4 * log * log;
}

// As smoothPoints, with noise of 0.02 %.
PointArray noisyPoints(std::size_t count, std::uint64_t seed = 7) {
  PointArray points = smoothPoints(count);
  std::mt19937_64 random(seed);
  std::normal_distribution<double> noise(0, 2e-4);
  for (std::size_t i = 0; i < count; ++i) points(i, 1) *= 1 + noise(random);
  return points;
}

class service_budgets : public ServiceTest {
 protected:
  Meter stored(Database& lab, const std::string& series, Choice choice = Choice::trusted,
               bool isRatio = false) {
    const Meter meter = lab.registerMeter("M1");
    lab.storeRaw(meter, series, 1, noisyPoints(40));
    (void)lab.store(lab.fit(meter, series, {.band = 2, .ratio = isRatio, .choice = choice}));
    return meter;
  }
};

const BudgetRow* rowOf(const Budget& budget, const std::string& cause) {
  const auto found = std::ranges::find(budget.rows, cause, &BudgetRow::cause);
  return found == budget.rows.end() ? nullptr : &*found;
}

double sumOfSquares(const Budget& budget) {
  return std::accumulate(
      budget.rows.begin(), budget.rows.end(), 0.0,
      [](double sum, const BudgetRow& row) { return sum + row.contribution * row.contribution; });
}

TEST(fitted_curve, is_the_equation_between_the_points_of_its_table) {
  const std::array<PointArray, 1> points{smoothPoints(30)};
  const Fit made = fit(points, {.points = 5, .band = 2, .only = {"Polynomial 2nd Order"}});
  ASSERT_TRUE(made.accepted()) << made.reason();
  const FittedCurve curve(made);
  EXPECT_EQ(curve.source(), CurveSource::equation);
  double worstOfTable = 0;
  for (const double x : {15.0, 77.0, 430.0, 900.0}) {
    EXPECT_NEAR(curve(x), truthAt(x), 1e-7);
    const double h = x * 1e-3;
    EXPECT_NEAR(curve.at(x).slope, (truthAt(x + h) - truthAt(x - h)) / (2 * h), 1e-6);
    worstOfTable = std::max(worstOfTable, std::abs(curve.table()(x).strouhal - truthAt(x)));
  }
  EXPECT_GT(worstOfTable, 0.1);
}

TEST(fitted_curve, gives_a_value_that_does_not_depend_on_what_else_is_asked) {
  for (const Choice choice : {Choice::adjustedR2, Choice::trusted}) {
    const std::array<PointArray, 1> points{noisyPoints(40)};
    const FittedCurve curve(fit(points, {.band = 2, .choice = choice}));
    const std::vector<double> places{12, 40, 133.7, 850};
    const std::vector<double> together = curve(places);
    for (std::size_t i = 0; i < places.size(); ++i) {
      EXPECT_EQ(together[i], curve(places[i]));
      EXPECT_EQ(together[i], curve.at(places[i]).strouhal);
    }
  }
}

TEST(fitted_curve, finds_the_roshko_number_of_a_strouhal_number) {
  const std::array<PointArray, 1> points{smoothPoints(30)};
  // It rises up to Roshko 316.
  const FittedCurve curve(
      fit(points, {.max = 300, .points = 6, .band = 2, .only = {"Polynomial 2nd Order"}}));
  const CurveEstimate found = curve.inverse(truthAt(222));
  EXPECT_NEAR(found.roshko, 222, 1e-6);
  ASSERT_TRUE(found.expandedRoshko());
  EXPECT_DOUBLE_EQ(*found.expandedRoshko(), found.budget->expanded / found.slope);
}

TEST(fitted_curve, has_no_uncertainty_beyond_its_ends) {
  const std::array<PointArray, 1> points{noisyPoints(40)};
  const FittedCurve curve(fit(points, {.band = 2}));
  const CurveEstimate beyond = curve.at(5000);
  EXPECT_TRUE(beyond.isExtrapolated);
  EXPECT_FALSE(beyond.budget);
  EXPECT_EQ(beyond.strouhal, curve.table()(5000).strouhal);
}

TEST_F(service_budgets, contain_the_scatter_of_the_points_alone_without_a_stand) {
  Database db = lab();
  const Meter meter = stored(db, "Rotor A");
  const CurveEstimate at = db.fittedCurve(meter, "Rotor A").at(120);
  ASSERT_TRUE(at.budget);
  EXPECT_FALSE(at.budget->hasStand);
  EXPECT_THAT(at.budget->contents(), HasSubstr("scatter of the points"));
  EXPECT_NEAR(at.budget->coverageFactor, 2, 1e-6);
  EXPECT_LT(at.budget->expandedPercent, 0.05);
  EXPECT_NEAR(at.strouhal / truthAt(120), 1, at.budget->expandedPercent / 50);
}

TEST_F(service_budgets, contain_what_the_stand_states) {
  Database db = lab();
  const Meter meter = stored(db, "Rotor A");
  (void)db.setStandUncertainty(meter, {stand, "stand.ini"});
  const FittedCurve curve = db.fittedCurve(meter, "Rotor A");
  const CurveEstimate at = curve.at(120);
  const Budget& budget = *at.budget;
  EXPECT_EQ(budget.stand, "Stand 3");
  const BudgetRow* flow = rowOf(budget, "reference flow");
  const BudgetRow* viscosity = rowOf(budget, "viscosity");
  ASSERT_TRUE(flow && viscosity && rowOf(budget, "frequency") && rowOf(budget, "fit"));
  // 0.06 % with k = 2; 1 % over sqrt 3, through Roshko dy/dRoshko.
  EXPECT_NEAR(std::abs(flow->contribution), 0.0003 * at.strouhal, 1e-4 * at.strouhal * 0.0003);
  EXPECT_NEAR(std::abs(viscosity->contribution), 0.01 / std::sqrt(3) * 120 * std::abs(at.slope),
              1e-3 * std::abs(viscosity->contribution));
  EXPECT_NEAR(budget.standardUncertainty, std::sqrt(sumOfSquares(budget)),
              1e-9 * budget.standardUncertainty);
  const MonteCarloCheck drawn = curve.monteCarlo(120, {}, 400'000);
  EXPECT_NEAR(drawn.halfWidth() / budget.expanded, 1, 0.05);
}

TEST_F(service_budgets, never_state_less_than_the_capability_of_the_laboratory) {
  Database db = lab();
  const Meter meter = stored(db, "Rotor A");
  (void)db.setStandUncertainty(meter, {"[stand]\ncmc = 0.2 %\n[flow]\nstandard = 0.01 %\n", ""});
  const Budget budget = *db.fittedCurve(meter, "Rotor A").at(120).budget;
  EXPECT_TRUE(budget.isCmc);
  EXPECT_NEAR(budget.roundedPercent(), 0.2, 1e-12);
}

TEST_F(service_budgets, of_a_rotor_ratio_know_nothing_of_the_common_flow) {
  Database db = lab();
  const Meter meter = stored(db, "Ratio");
  (void)db.setStandUncertainty(meter, {stand, "stand.ini"});
  const Budget budget = *db.fittedCurve(meter, "Ratio").at(120).budget;
  EXPECT_EQ(rowOf(budget, "reference flow")->contribution, 0);
}

TEST_F(service_budgets, of_the_table_contain_the_error_of_reading_it) {
  Database db = lab();
  const Meter meter = db.registerMeter("M1");
  db.storeRaw(meter, "Rotor A", 1, noisyPoints(40));
  (void)db.store(db.fit(meter, "Rotor A", {.points = 6, .band = 2}));
  const FittedCurve curve = db.fittedCurve(meter, "Rotor A");
  const auto& points = curve.table().points();
  const double middle = (points[2].roshko + points[3].roshko) / 2;
  const CurveEstimate read = curve.at(middle, {.reading = ReadAs::linear});
  EXPECT_NEAR(read.strouhal, (points[2].strouhal + points[3].strouhal) / 2, 1e-9);
  const BudgetRow* row = rowOf(*read.budget, "table reading");
  ASSERT_TRUE(row);
  const double error = std::abs(read.strouhal - curve(middle));
  EXPECT_GE(row->contribution * std::sqrt(3) * 1.0001, error);
  EXPECT_EQ(rowOf(*curve.at(middle).budget, "table reading"), nullptr);
  EXPECT_GT(read.budget->expanded, curve.at(middle).budget->expanded);
}

TEST_F(service_budgets, are_not_known_for_a_curve_that_cannot_be_fitted_again) {
  Database db = lab();
  const Meter meter = stored(db, "Rotor A");
  db.storeRaw(meter, "Rotor A", 1, noisyPoints(30, 99));
  const FittedCurve curve = db.fittedCurve(meter, "Rotor A");
  EXPECT_EQ(curve.source(), CurveSource::table);
  EXPECT_FALSE(curve.at(120).budget);
  EXPECT_EQ(curve(120), db.curve(meter, "Rotor A")(120).strouhal);
}

TEST_F(service_budgets, keep_the_statement_with_the_calibration_and_in_the_history) {
  Database db = lab();
  const Meter meter = stored(db, "Rotor A");
  EXPECT_EQ(db.setStandUncertainty(meter, {stand, "stand.ini"}), 0);
  EXPECT_EQ(db.standUncertainty(meter)->text, stand);
  EXPECT_FALSE(db.standUncertainty(db.registerMeter("M1", true)));
  const HistoryEntryId entry =
      db.setStandUncertainty(meter, {"[flow]\nstandard = 1 %\n", "other.ini"});
  ASSERT_NE(entry, 0);
  (void)db.restore(entry);
  EXPECT_EQ(db.standUncertainty(meter)->file, "stand.ini");
  const HistoryEntry removed = db.remove(meter);
  EXPECT_EQ(removed.rows.at("pelmora_stand_uncertainty"), 1u);
  (void)db.restore(removed.id);
  EXPECT_EQ(db.standUncertainty(meter)->text, stand);
  EXPECT_NE(db.removeStandUncertainty(meter), 0);
  EXPECT_FALSE(db.standUncertainty(meter));
}

TEST_F(service_budgets, refuse_a_statement_that_is_not_understood) {
  Database db = lab();
  const Meter meter = stored(db, "Rotor A");
  const auto failure = failureOf<BadData>([&] {
    (void)db.setStandUncertainty(meter, {"[flow]\nstandard = 1 bananas\n", "s.ini"});
  });
  EXPECT_THAT(failure.what(), HasSubstr("line 2"));
  EXPECT_EQ(failure.where(), "s.ini");
  EXPECT_FALSE(db.standUncertainty(meter));
}

TEST(table_readings, are_found_by_their_keys) {
  for (const ReadAs reading : {ReadAs::none, ReadAs::linear, ReadAs::log, ReadAs::cubic})
    EXPECT_EQ(tableReadingOf(tableReadingKey(reading)), reading);
  EXPECT_EQ(tableReadingOf("Linear"), std::nullopt);
}

}  // namespace
}  // namespace pelmora::calibration::test
