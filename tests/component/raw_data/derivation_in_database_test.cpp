// The four derivations on a real curve database.
// SPDX-License-Identifier: MIT
#include "calibration/steps/whole_part.h"
#include "component/series_derivation.h"
#include "tests/support/comma_locale.h"
#include "tests/support/curve_database.h"

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Derive = void (*)(const OperationContext&, const DerivationTarget&, MeterInfo&);

// f_A = 2.5, f_B = 5, flow 4, viscosity 5, 50 degrees above 70.
const StandRow measured{
    .job = "1001", .v1 = 2, .v2 = 8, .v3 = 4, .v4 = 10, .v5 = 5, .v12 = 120, .v20 = 2, .v21 = 10};
constexpr double roshkoFactor = 1 + 0.0000192 * 50;
constexpr double strouhalFactor = 1 + 0.0000288 * 50;

class derived_series : public CurveDatabaseTest {
 protected:
  derived_series() {
    meter.MeterID = 7;
    meter.Series.resize(4);
    const char* names[] = {"Rotor A", "Rotor B", "Rotor Sum", "Ratio"};
    for (std::size_t i = 0; i < 4; ++i) meter.Series[i].SeriesName = names[i];
  }
  void measure(const StandRow& row, int setup = 5) {
    std::string columns;
    for (int i = 1; i <= 37; ++i) columns += ", V" + std::to_string(i);
    run("INSERT INTO CalDataPoint (CalSetupID, JobRecordID" + columns + ") VALUES (" +
        std::to_string(setup) + "," + standLine(row) + ")");
  }
  // The points of the series in the table, and nothing else is there.
  PointArray derive(Derive member, std::vector<std::string> jobs = {"1001"}) {
    member(context, {database, "Raw1", "5", std::move(jobs)}, meter);
    auto rows = database->openRecordset("select roshko, strouhal from raw1",
                                        CursorType::forwardOnly, LockType::optimistic);
    PointArray points(static_cast<std::size_t>(rows->recordCount()));
    for (std::size_t i = 0; i < points.size(); ++i, rows->moveNext()) {
      points(i, 0) = toDouble(rows->value("roshko"));
      points(i, 1) = toDouble(rows->value("strouhal"));
    }
    return points;
  }
  static void expectPoint(const PointArray& points, double roshko, double strouhal) {
    ASSERT_EQ(points.size(), 1U);
    EXPECT_DOUBLE_EQ(points(0, 0), roshko);
    EXPECT_DOUBLE_EQ(points(0, 1), strouhal);
  }

  MeterInfo meter;
};

// Points that somebody has left out, in tables that hosts do not know.
class derivation_of_excluded_points : public derived_series {
 protected:
  void measureThree(const std::string& job, double pulses) {
    run("DELETE FROM CalDataPoint");
    for (const double factor : {1.0, 2.0, 3.0}) {
      StandRow row = measured;
      row.job = job;
      row.v4 = pulses * factor;
      measure(row);
    }
  }
  void exclude(std::size_t number) {
    auto part = steps::readWholePart(*database, 1, meter.Series[0].SeriesID);
    part.Points.at(number - 1).Exclusion = ExcludedRow{};
    part.Points.at(number - 1).Exclusion->Job = "1001";
    steps::writeWholePart(*database, meter.Series[0].SeriesID, part);
  }
};

TEST_F(derivation_of_excluded_points, leaves_them_out_again) {
  measureThree("1001", 10);
  const PointArray whole = derive(SeriesViaCaldb_RotorA);
  ASSERT_EQ(whole.size(), 3U);
  exclude(2);
  const PointArray again = derive(SeriesViaCaldb_RotorA);
  EXPECT_EQ(again, (PointArray{{whole(0, 0), whole(0, 1)}, {whole(2, 0), whole(2, 1)}}));
}

TEST_F(derivation_of_excluded_points, brings_all_points_of_another_job_or_of_other_values) {
  measureThree("1001", 10);
  (void)derive(SeriesViaCaldb_RotorA);
  exclude(2);
  measureThree("1001", 11);
  EXPECT_EQ(derive(SeriesViaCaldb_RotorA).size(), 3U);
  measureThree("1002", 10);
  EXPECT_EQ(derive(SeriesViaCaldb_RotorA, {"1002"}).size(), 3U);
  measureThree("1001", 10);  // the record is still there
  EXPECT_EQ(derive(SeriesViaCaldb_RotorA).size(), 2U);
}

TEST_F(derived_series, of_rotor_A_are_corrected_for_temperature) {
  measure(measured);
  expectPoint(derive(SeriesViaCaldb_RotorA), 0.5 * roshkoFactor, 0.625 * strouhalFactor);
}

TEST_F(derived_series, of_rotor_B_come_from_its_own_columns) {
  measure(measured);
  expectPoint(derive(SeriesViaCaldb_RotorB), 1 * roshkoFactor, 1.25 * strouhalFactor);
}

TEST_F(derived_series, of_the_sum_have_a_plain_quotient_of_frequencies) {
  measure(measured);
  expectPoint(derive(SeriesViaCaldb_SumAB), 1.5 * roshkoFactor, 0.5);
}

TEST_F(derived_series, of_the_ratio_have_it_turned_over) {
  measure(measured);
  expectPoint(derive(SeriesViaCaldb_Ratio), 1.5 * roshkoFactor, 2);
}

TEST_F(derived_series, of_rotor_B_in_a_job_of_its_own_come_from_the_columns_of_rotor_A) {
  measure(measured);
  StandRow second = measured;
  second.job = "1002";
  second.v4 = 20;
  measure(second);
  expectPoint(derive(SeriesViaCaldb_RotorB, {"1001", "1002"}), 1 * roshkoFactor,
              1.25 * strouhalFactor);
}

TEST_F(derived_series, of_other_set_ups_stay_away) {
  measure(measured);
  measure(measured, 6);
  EXPECT_EQ(derive(SeriesViaCaldb_RotorA).size(), 1U);
}

TEST_F(derived_series, are_replaced_and_keep_their_series_row) {
  measure(measured);
  (void)derive(SeriesViaCaldb_RotorA);
  const std::int32_t id = meter.Series[0].SeriesID;
  EXPECT_EQ(derive(SeriesViaCaldb_RotorA).size(), 1U);
  EXPECT_EQ(meter.Series[0].SeriesID, id);
  EXPECT_THAT(lines("select name, meterid from series"), ElementsAre("Rotor A|7"));
}

TEST_F(derived_series, with_a_zero_divisor_insert_nothing_at_all) {
  measure(measured);
  StandRow still = measured;
  still.v3 = 0;
  measure(still);
  EXPECT_TRUE(derive(SeriesViaCaldb_RotorA).empty());
  EXPECT_THAT(boxes,
              ElementsAre(errorBox("Error in RawData:SeriesViaCaldb_RotorA", "Division by zero")));
}

TEST_F(derived_series, with_a_rotor_that_stood_still_insert_nothing_in_the_ratio) {
  StandRow still = measured;
  still.v4 = 0;
  measure(still);
  EXPECT_TRUE(derive(SeriesViaCaldb_Ratio).empty());
  EXPECT_THAT(boxes,
              ElementsAre(errorBox("Error in RawData:SeriesViaCaldb_Ratio", "Division by zero")));
}

TEST_F(derived_series, with_a_missing_value_are_null_there) {
  run("INSERT INTO CalDataPoint (CalSetupID, JobRecordID, V1, V2, V3, V4, V12) VALUES "
      "(5, 1001, 2, 8, 4, 10, 70)");
  SeriesViaCaldb_RotorA(context, {database, "Raw1", "5", {"1001"}}, meter);
  EXPECT_THAT(lines("select roshko, strouhal from raw1"), ElementsAre("|0.625"));
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(derived_series, of_sum_and_ratio_of_two_jobs_end_up_empty) {
  measure(measured);
  StandRow second = measured;
  second.job = "1002";
  measure(second);
  (void)derive(SeriesViaCaldb_SumAB);
  EXPECT_TRUE(derive(SeriesViaCaldb_SumAB, {"1001", "1002"}).empty());
  EXPECT_TRUE(derive(SeriesViaCaldb_Ratio, {"1001", "1002"}).empty());
  EXPECT_THAT(boxes,
              ElementsAre(errorBox("Error in RawData:SeriesViaCaldb_SumAB", "Type mismatch"),
                          errorBox("Error in RawData:SeriesViaCaldb_Ratio", "Type mismatch")));
}

TEST_F(derived_series, fail_where_the_locale_has_a_decimal_comma) {
  measure(measured);
  const CommaLocale comma;
  if (!comma.isSet()) GTEST_SKIP() << CommaLocale::missing;
  EXPECT_TRUE(derive(SeriesViaCaldb_RotorA).empty());
  EXPECT_THAT(boxes, ElementsAre(errorBoxOf("Error in RawData:SeriesViaCaldb_RotorA")));
}

}  // namespace
}  // namespace pelmora::test
