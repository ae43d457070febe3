// Stands whose uncertainty is stated in units: the readings say what it means. And the units of a
// curve in service.
// SPDX-License-Identifier: MIT
#include "tests/calibration/service_fixture.h"
#include "tests/support/csv_table.h"

#include <algorithm>
#include <cmath>

namespace pelmora::calibration::test {
namespace {

using testing::HasSubstr;

const std::string absolute =
    "[stand]\nname = S\n[flow]\nstandard = 2e-5 gal/s\n[viscosity]\nstandard = 0.01 cSt\n"
    "[frequency]\nstandard = 0.05 Hz\nrotors = independent\n";

class absolute_uncertainty : public ServiceTest {
 protected:
  // The demonstration meter in a thin and a thick fluid.
  Meter demo(Database& lab, const Details& details = {}) {
    const Meter meter = lab.registerMeter("M1");
    lab.importRuns(meter, Stand(exampleData("stand-dual-rotor.csv")),
                   {{"1001", "Mineral spirit", "Ada"}, {"1002", "Glycol mix", "Ada"}});
    for (const std::string& name : lab.seriesOf(meter))
      (void)lab.store(lab.fit(meter, name, {.ratio = name == "Ratio", .choice = Choice::trusted}));
    lab.setStandUncertainty(meter, {absolute, "stand.ini"});
    if (!details.empty()) (void)lab.setDetails(meter, details);
    return meter;
  }
  // Flow, viscosity and frequency of rotor A at the points of one run.
  struct Row {
    double flow, viscosity, frequency, frequencyB;
  };
  static std::vector<Row> rowsOf(const std::string& job) {
    std::vector<Row> rows;
    for (const auto& row : pelmora::test::readCsv(exampleData("stand-dual-rotor.csv"))) {
      const auto v = [&](int n) { return std::stod(row.at("V" + std::to_string(n))); };
      if (row.at("JobRecordID") == job)
        rows.push_back({v(2) / v(1), v(5), v(4) / v(3), v(21) / v(20)});
    }
    return rows;
  }
};

// Whether the merge has kept a point; the curve does not rest on the others.
bool isMerged(const StoredSeries& series, double x, double y) {
  for (std::size_t i = 0; i < series.merged.size(); ++i) {
    if (series.merged(i, 0) == x && series.merged(i, 1) == y) return true;
  }
  return false;
}

double contribution(const Budget& budget, const std::string& cause) {
  const auto row = std::ranges::find(budget.rows, cause, &BudgetRow::cause);
  return row == budget.rows.end() ? -1 : std::abs(row->contribution);
}

TEST_F(absolute_uncertainty, of_a_measured_point_refers_to_its_own_readings) {
  Database db = lab();
  const Meter meter = demo(db, {{"strouhal-unit", "pulses/gal"}});
  const FittedCurve curve = db.fittedCurve(meter, "Rotor A");
  const StoredSeries series = db.series(meter, "Rotor A");
  for (const int part : {1, 2}) {
    const PointArray& points = series.raw[static_cast<std::size_t>(part - 1)];
    const auto rows = rowsOf(part == 1 ? "1001" : "1002");
    ASSERT_EQ(points.size(), rows.size());
    const auto budgets = curve.measured(points.column(0), points.column(1));
    for (std::size_t i = 0; i < rows.size(); ++i) {
      ASSERT_TRUE(budgets[i]);
      const double x = points(i, 0), y = points(i, 1);
      if (!isMerged(series, x, y)) continue;
      EXPECT_NEAR(contribution(*budgets[i], "reference flow") / (y * 2e-5 / rows[i].flow), 1, 1e-4);
      const double steep = x * curve.slopes({&x, 1}).front();
      EXPECT_NEAR(contribution(*budgets[i], "viscosity"),
                  std::abs(steep) * 0.01 / rows[i].viscosity, 2e-3);
      EXPECT_NEAR(contribution(*budgets[i], "frequency"),
                  std::abs(y - steep) * 0.05 / rows[i].frequency, 2e-3);
    }
  }
}

// Both fluids were measured there; at equal Roshko numbers, the flow of the thin one is smaller.
TEST_F(absolute_uncertainty, of_the_curve_is_that_of_the_fluid_in_which_it_weighs_most) {
  Database db = lab();
  const Meter meter = demo(db, {{"flow-unit", "gal/s"}});
  (void)db.store(db.fit(meter, "Rotor A", {.band = 30, .cutsOverlap = false}));
  const FittedCurve curve = db.fittedCurve(meter, "Rotor A");
  const StoredSeries series = db.series(meter, "Rotor A");
  const auto rows = rowsOf("1001");
  const double highest = std::ranges::max(series.raw[1].column(0));
  int checked = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const double x = series.raw[0](i, 0);
    if (!isMerged(series, x, series.raw[0](i, 1))) continue;
    if (x > highest || x < curve.lowestRoshko()) continue;
    const CurveEstimate at = curve.at(x);
    ASSERT_TRUE(at.budget);
    EXPECT_NEAR(contribution(*at.budget, "reference flow") / (at.strouhal * 2e-5 / rows[i].flow), 1,
                1e-4);
    ++checked;
  }
  EXPECT_GT(checked, 0);
  // A viscosity that is given takes the place of the readings: 0.01 of 2 cSt.
  const CurveEstimate at = curve.at(300, {.viscosity = 2});
  EXPECT_NEAR(contribution(*at.budget, "viscosity"), std::abs(300 * at.slope) * 0.005, 1e-4);
}

// One counter has 0.05 Hz on the frequency of its rotor, not on the sum of both. The flow cancels.
TEST_F(absolute_uncertainty, of_a_quotient_has_one_counter_for_each_rotor) {
  Database db = lab();
  const Meter meter = demo(db);
  const FittedCurve curve = db.fittedCurve(meter, "Rotor Sum");
  const StoredSeries series = db.series(meter, "Rotor Sum");
  const auto rows = rowsOf("1001");
  const std::size_t i = 11;  // the highest flow
  const double x = series.raw[0](i, 0), y = series.raw[0](i, 1);
  const auto budget = curve.measured({&x, 1}, {&y, 1}).front();
  ASSERT_TRUE(budget);
  EXPECT_EQ(contribution(*budget, "reference flow"), 0);
  const double lower = std::min(rows[i].frequency, rows[i].frequencyB);
  EXPECT_NEAR(contribution(*budget, "frequency") / (y * std::sqrt(2) * 0.05 / lower), 1, 0.02);
}

TEST_F(absolute_uncertainty, of_a_flow_without_a_unit_says_what_to_record) {
  Database db = lab();
  const Meter meter = demo(db);
  try {
    (void)db.fittedCurve(meter, "Rotor A").at(300);
    FAIL();
  } catch (const BadData& failure) {
    EXPECT_THAT(failure.what(), HasSubstr("gal/s"));
    EXPECT_THAT(failure.remedy(), HasSubstr("record the units"));
  }
}

// The same numbers, said to be per litre: the flows are litres.
TEST_F(absolute_uncertainty, flows_and_tables_have_the_units_that_are_recorded) {
  Database db = lab();
  const Meter meter = demo(db, {{"strouhal-unit", "pulses/l"}, {"roshko-unit", "Hz/(m2/s)"}});
  const FittedCurve curve = db.fittedCurve(meter, "Rotor A");
  const double middle = std::sqrt(curve.lowestRoshko() * curve.highestRoshko());
  // 1 Hz/(m2/s) is a millionth of 1 Hz/cSt.
  const ServiceReading reading{.frequency = 400, .viscosity = 400 / middle * 1e6};
  const ServiceFlow flow = flowOf(curve, reading);
  EXPECT_EQ(flow.unit, "l/s");
  EXPECT_NEAR(flow.rotor.roshko / middle, 1, 1e-12);
  EXPECT_NEAR(flow.flow, 400 / curve(middle), 1e-12);
  const FlowComputerTable uvc = tableFor(curve, {.form = TableForm::uvc, .points = 10});
  EXPECT_EQ(uvc.xUnit, "Hz/(m2/s)");
  EXPECT_EQ(uvc.yUnit, "pulses/l");
  EXPECT_NEAR(uvc.rows[3].y, curve(uvc.rows[3].x), 1e-9 * uvc.rows[3].y);
  const FlowComputerTable gallons =
      tableFor(curve, {.form = TableForm::uvc, .points = 10, .yUnit = "pulses/gal"});
  EXPECT_NEAR(gallons.rows[3].y, uvc.rows[3].y * 3.785411784, 1e-9 * gallons.rows[3].y);
  const FlowComputerTable linear =
      tableFor(curve, {.form = TableForm::linear, .points = 10, .viscosity = 2});
  EXPECT_NEAR(linear.rows[3].y, curve(linear.rows[3].x / 2 * 1e6), 1e-9 * linear.rows[3].y);
}

}  // namespace
}  // namespace pelmora::calibration::test
