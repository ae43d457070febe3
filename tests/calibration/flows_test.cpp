// Flow in service, tables for flow computers and drift, through the service.
// SPDX-License-Identifier: MIT
#include "store/connection.h"
#include "tests/calibration/service_fixture.h"
#include "tests/support/csv_table.h"

#include <stop_token>

namespace pelmora::calibration::test {
namespace {

using testing::HasSubstr;

class service_flows : public ServiceTest {
 protected:
  // The demonstration meter in both fluids.
  Meter demo(Database& lab) {
    const Meter meter = lab.registerMeter("M1");
    lab.importRuns(meter, Stand(exampleData("stand-dual-rotor.csv")),
                   {{"1001", "Mineral spirit", "Ada"}, {"1002", "Glycol mix", "Ada"}});
    for (const std::string& name : lab.seriesOf(meter))
      (void)lab.store(lab.fit(meter, name, {.ratio = name == "Ratio", .choice = Choice::trusted}));
    return meter;
  }
};

TEST_F(service_flows, are_what_the_stand_measured) {
  Database db = lab();
  const Meter meter = demo(db);
  const FittedCurve a = db.fittedCurve(meter, "Rotor A"), b = db.fittedCurve(meter, "Rotor B");
  int checked = 0;
  for (const auto& row : pelmora::test::readCsv(exampleData("stand-dual-rotor.csv"))) {
    if (row.at("JobRecordID") != "1001") continue;
    const auto v = [&](int n) { return std::stod(row.at("V" + std::to_string(n))); };
    ServiceReading reading{.frequency = v(4) / v(3), .frequencyB = v(21) / v(20)};
    reading.viscosity = v(5);
    reading.celsius = (v(12) - 32) / 1.8;
    const double measured = v(2) / v(1);
    const ServiceFlow flow = flowOf(a, b, nullptr, reading);
    if (flow.rotor.isExtrapolated || flow.rotorB->isExtrapolated) continue;
    // Below this, the merge has cut points, which lie off the common curve.
    if (flow.rotor.roshko < 100) continue;
    EXPECT_NEAR(flow.flow / measured, 1, 0.002);
    EXPECT_NEAR(flowOf(a, reading).flow / measured, 1, 0.002);
    EXPECT_NEAR(
        flowsOf(a, {&reading.frequency, 1}, {&*reading.viscosity, 1}, std::array{v(12)}).front(),
        flowOf(a, reading).flow, 1e-12);
    ++checked;
  }
  EXPECT_GT(checked, 10);
}

double rotorA(double x) { return 1300 * (1 - 3 / (x + 5)); }
double rotorB(double x) { return 1250 * (1 - 1 / (x + 5)); }

TEST_F(service_flows, of_two_rotors_need_no_viscosity) {
  constexpr std::size_t count = 60;
  PointArray a(count), b(count), sum(count);
  for (std::size_t i = 0; i < count; ++i) {
    const double x = 10 * std::pow(100, static_cast<double>(i) / (count - 1));
    double y = x;  // the Roshko number of rotor B in the same flow: x / A(x) = y / B(y)
    for (int k = 0; k < 200; ++k) y = rotorB(y) * x / rotorA(x);
    a(i, 0) = x, a(i, 1) = rotorA(x);
    b(i, 0) = y, b(i, 1) = rotorB(y);
    sum(i, 0) = x + y, sum(i, 1) = x / y;
  }
  const auto curveOf = [](const PointArray& points, const std::string& name) {
    Fit made = fit({&points, 1}, {.points = 200, .band = 1, .choice = Choice::trusted});
    made.series = name;
    return FittedCurve(made);
  };
  const FittedCurve quotient = curveOf(sum, "Rotor Sum");
  constexpr double viscosity = 2;
  ServiceReading reading{.frequency = viscosity * a(30, 0), .frequencyB = viscosity * b(30, 0)};
  const ServiceFlow flow = flowOf(curveOf(a, "Rotor A"), curveOf(b, "Rotor B"), &quotient, reading);
  EXPECT_TRUE(flow.isViscosityOfQuotient);
  EXPECT_NEAR(flow.viscosity, viscosity, 0.02);
  EXPECT_NEAR(flow.flow / (viscosity * a(30, 0) / a(30, 1)), 1, 1e-3);
  // The viscosity was not measured, but its uncertainty is part of U.
  const auto& rows = flow.budget->rows;
  EXPECT_TRUE(std::ranges::any_of(rows, [](const BudgetRow& row) {
    return row.cause == "viscosity" && row.label.ends_with("quotient of the rotors") &&
           row.contribution > 0;
  }));
  EXPECT_FALSE(flow.differencePercent);
  reading.viscosity = viscosity;
  const ServiceFlow known = flowOf(curveOf(a, "Rotor A"), curveOf(b, "Rotor B"), nullptr, reading);
  EXPECT_NEAR(*known.differencePercent, 0, 0.05);
}

TEST_F(service_flows, have_the_uncertainty_of_the_curve_and_the_instruments) {
  Database db = lab();
  const Meter meter = demo(db);
  (void)db.setStandUncertainty(meter, {"[flow]\nstandard = 0.05 %\n", ""});
  const FittedCurve a = db.fittedCurve(meter, "Rotor A");
  ServiceReading reading{.frequency = 400};
  reading.viscosity = 1.2;
  const Budget bare = *flowOf(a, reading).budget;
  EXPECT_GE(bare.expandedPercent, 0.0999);
  reading.instruments = StandStatement{"[frequency]\nstandard = 0.1 %\n", "instruments.ini"};
  const Budget whole = *flowOf(a, reading).budget;
  const double s = 400 / 1.2 * a.at(400 / 1.2).slope / a(400 / 1.2);
  EXPECT_NEAR(std::hypot(bare.standardUncertainty / bare.value, 0.001 * (1 - s)),
              whole.standardUncertainty / whole.value, 1e-7);
}

TEST_F(service_flows, need_as_many_values_of_each_kind) {
  Database db = lab();
  const Meter meter = demo(db);
  const FittedCurve rotor = db.fittedCurve(meter, "Rotor A");
  const std::vector<double> two{400, 500}, one{1.2}, temperatures{70, 70};
  const auto failure = failureOf<BadData>([&] { (void)flowsOf(rotor, two, one, temperatures); });
  EXPECT_THAT(failure.what(), HasSubstr("2 frequencies, 1 viscosities and 2 temperatures"));
  EXPECT_THROW((void)flowsOf(rotor, two, temperatures, one), BadData);
}

TEST_F(service_flows, end_where_the_caller_asks_for_it) {
  Database db = lab();
  const FittedCurve rotor = db.fittedCurve(demo(db), "Rotor A");
  const std::vector<double> frequency{400}, viscosity{1.2}, temperature{70};
  std::stop_source source;
  EXPECT_EQ(flowsOf(rotor, frequency, viscosity, temperature, source.get_token()).size(), 1U);
  source.request_stop();
  EXPECT_THROW((void)flowsOf(rotor, frequency, viscosity, temperature, source.get_token()),
               Cancelled);
}

TEST_F(service_flows, refuse_a_stored_law_with_half_a_point) {
  Database db = lab();
  FluidLaw oil{.name = "Oil"};
  oil.points = {{20, 2}, {40, 1}};
  db.setFluidLaw(oil);
  db.connection()->execute("Update pelmora_fluid_law set Content='table; points 20 2 40 1 60'");
  EXPECT_THAT(failureOf<BadData>([&] { (void)db.fluidLaw("Oil"); }).what(),
              HasSubstr("the law of fluid 'Oil' cannot be read"));
}

TEST_F(service_flows, refuse_a_series_without_a_flow) {
  Database db = lab();
  const Meter meter = demo(db);
  ServiceReading reading{.frequency = 400};
  reading.viscosity = 1.2;
  const auto failure =
      failureOf<BadData>([&] { (void)flowOf(db.fittedCurve(meter, "Ratio"), reading); });
  EXPECT_THAT(failure.what(), HasSubstr("quotient"));
}

TEST_F(service_flows, take_the_viscosity_of_a_stored_fluid) {
  Database db = lab();
  FluidLaw oil{.name = "ISO 32", .kind = ViscosityLawKind::d341};
  oil.points = {{40, 32}, {100, 5.4}};
  db.setFluidLaw(oil);
  // 8.533 cSt: log10 log10 (v + 0.7) is a straight line over log10 T (ASTM D341).
  EXPECT_NEAR(db.fluidLaw("iso 32").viscosity(80), 8.533, 5e-4);
  EXPECT_LT(db.fluidLaw("ISO 32").changePerKelvin(60), 0);
  FluidLaw water{.name = "Water", .kind = ViscosityLawKind::andrade};
  water.constants = {-3.7188, 578.919, -137.546};
  water.lowestCelsius = 0;
  water.highestCelsius = 100;
  db.setFluidLaw(water);
  EXPECT_NEAR(db.fluidLaw("Water").viscosity(20), 1.0016, 0.002);
  ASSERT_EQ(db.fluidLaws().size(), 2u);
  EXPECT_THAT(failureOf<NotFound>([&] { (void)db.fluidLaw("Watr"); }).remedy(), HasSubstr("Water"));
  EXPECT_THROW((void)db.fluidLaw("Water").viscosity(150), OutOfRange);
  db.removeFluidLaw("Water");
  EXPECT_EQ(db.fluidLaws().size(), 1u);
  oil.points = {{40, 5}, {100, 32}};
  EXPECT_THROW(db.setFluidLaw(oil), BadData);
}

TEST_F(service_flows, tables_of_the_demonstration_meter_meet_their_limits) {
  Database db = lab();
  const Meter meter = demo(db);
  const FittedCurve sum = db.fittedCurve(meter, "Rotor Sum");
  const auto errorOf = [&](std::size_t points, ReadAs reading) {
    TableOptions options;
    options.points = points;
    options.reading = reading;
    const FlowComputerTable table = tableFor(sum, options);
    EXPECT_EQ(table.rows.size(), points);
    // What a flow computer reads is as right as the table says.
    double worst = 0;
    for (std::size_t i = 0; i + 1 < table.rows.size(); ++i) {
      const TableRow &low = table.rows[i], &high = table.rows[i + 1];
      for (double share = 0.01; share < 1; share += 0.01) {
        const double x = reading == ReadAs::log ? low.x * std::pow(high.x / low.x, share)
                                                : low.x + share * (high.x - low.x);
        const double read = low.y + share * (high.y - low.y);
        worst = std::max(worst, 100 * std::abs(read / sum(x) - 1));
      }
    }
    EXPECT_LE(worst, table.readingErrorPercent * 1.0001);
    EXPECT_GE(worst, table.readingErrorPercent * 0.98);
    return table.readingErrorPercent;
  };
  EXPECT_LE(errorOf(16, ReadAs::linear), 0.05);
  EXPECT_LE(errorOf(16, ReadAs::log), 0.025);
  EXPECT_LE(errorOf(40, ReadAs::linear), 0.008);
}

TEST_F(service_flows, tables_come_in_the_forms_and_units_that_are_asked_for) {
  Database db = lab();
  const Meter meter = demo(db);
  const FittedCurve a = db.fittedCurve(meter, "Rotor A");
  TableOptions options;
  options.points = 20;
  options.form = TableForm::linear;
  EXPECT_THROW((void)tableFor(a, options), BadData);
  options.viscosity = 2;
  options.yUnit = "pulses/l";
  const FlowComputerTable table = tableFor(a, options);
  // At 70 F: f = 2 Roshko; 3.785411784 l are a gallon.
  EXPECT_NEAR(table.rows[7].y * 3.785411784, a(table.rows[7].x / 2), 1e-6);
  EXPECT_EQ(table.xUnit, "Hz");
  EXPECT_GE(*table.expandedPercent, 2 * table.readingErrorPercent / std::sqrt(3) * 0.99);
  options.yUnit = "Hz";
  EXPECT_THROW((void)tableFor(a, options), BadData);
}

TEST_F(service_flows, a_fit_stores_the_optimal_table_and_repeats_it) {
  Database db = lab();
  const Meter meter = db.registerMeter("M1");
  db.importRuns(meter, Stand(exampleData("stand-dual-rotor.csv")),
                {{"1001", "Mineral spirit", "Ada"}, {"1002", "Glycol mix", "Ada"}});
  for (const Choice choice : {Choice::adjustedR2, Choice::trusted}) {
    const Fit usual = db.fit(meter, "Rotor Sum", {.points = 16, .band = 1, .choice = choice});
    const Fit best =
        db.fit(meter, "Rotor Sum",
               {.points = 16, .spacing = PointSpacing::optimal, .band = 1, .choice = choice});
    ASSERT_TRUE(best.accepted());
    const auto worst = [](const Fit& made) {
      const FittedCurve curve(made);
      double error = 0;
      for (double x = made.min; x < made.max; x *= 1.003)
        error = std::max(error, 100 * std::abs(curve.table()(x).strouhal / curve(x) - 1));
      return error;
    };
    EXPECT_LE(worst(best), 0.05);
    EXPECT_GT(worst(usual), worst(best));
    EXPECT_EQ(best.curve.size(), 16u);
    (void)db.store(best);
    const Repeated repeated = db.repeat(db.series(meter, "Rotor Sum"));
    EXPECT_TRUE(repeated.isStoredCurve());
    EXPECT_EQ(repeated.fit.settings.spacing, PointSpacing::optimal);
  }
}

TEST(curve_shift, is_judged_without_what_the_stand_shares) {
  const auto curveWith = [](double factor, const std::string& stand) {
    std::array<PointArray, 1> points{smoothPoints(30)};
    for (std::size_t i = 0; i < 30; ++i)
      points[0](i, 1) *= factor * (1 + 1e-5 * (i % 2 == 0 ? 1 : -1));
    return FittedCurve(fit(points, {.band = 2}), StandStatement{stand, ""});
  };
  const std::string common = "[stand]\nname = S\n[flow]\nstandard = 0.5 %\n";
  const auto shift = shiftOf(curveWith(1, common), curveWith(1.001, common), 100);
  ASSERT_TRUE(shift);
  EXPECT_NEAR(shift->percent, 0.1, 0.002);
  EXPECT_LT(shift->uncertaintyPercent, 0.02);
  EXPECT_TRUE(shift->isSignificant());
  const std::string own = common + "[reproducibility]\nstandard = 0.1 %\n";
  EXPECT_FALSE(shiftOf(curveWith(1, own), curveWith(1.001, own), 100)->isSignificant());
}

TEST(drift_of_curves, finds_the_interval_that_a_straight_drift_leaves) {
  std::vector<DatedCurve> dated;
  for (int i = 0; i < 4; ++i) {
    std::array<PointArray, 1> points{smoothPoints(30)};
    for (std::size_t k = 0; k < 30; ++k)
      points[0](k, 1) *= (1 + 0.001 * i) * (1 + 1e-5 * (k % 2 == 0 ? 1 : -1));
    const std::string date = "20" + std::to_string(20 + i) + "-06-01";
    dated.push_back({i, date, yearsOf(date), FittedCurve(fit(points, {.band = 2}))});
  }
  DriftOptions options;
  options.roshko = {50, 500};
  options.limitPercent = 0.15;
  const Drift drift = driftOf(dated, options);
  ASSERT_EQ(drift.places.size(), 2u);
  EXPECT_NEAR(drift.places[0].values[3].percent, 0.3, 0.001);
  ASSERT_TRUE(drift.places[0].interval);
  // 0.1 % a year.
  EXPECT_NEAR(drift.places[0].interval->ratePercentPerYear, 0.1, 0.001);
  EXPECT_NEAR(*drift.intervalYears, 1.5, 0.3);
  options.limitPercent.reset();
  EXPECT_THAT(driftOf(dated, options).whyNoInterval, HasSubstr("limit"));
  EXPECT_EQ(yearsOf("yesterday"), std::nullopt);
  EXPECT_NEAR(*yearsOf("7/22/2021"), *yearsOf("2021-07-22"), 1e-12);
}

TEST(drift_of_curves, takes_no_date_that_can_be_read_in_two_ways) {
  EXPECT_EQ(yearsOf("03/04/2026"), std::nullopt);
  EXPECT_NEAR(*yearsOf("25/12/2026"), *yearsOf("2026-12-25"), 1e-12);
  EXPECT_NEAR(*yearsOf("12/25/2026"), *yearsOf("2026-12-25"), 1e-12);
  EXPECT_NEAR(*yearsOf("4/4/2026"), *yearsOf("2026-04-04"), 1e-12);
}

}  // namespace
}  // namespace pelmora::calibration::test
