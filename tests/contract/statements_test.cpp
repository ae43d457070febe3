// The statements of the component, run on a curve database of each engine.
// SPDX-License-Identifier: MIT
#include "tests/contract/engines.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>

namespace pelmora {
namespace {

using test::failureOf;

template <class Curves>
class statements : public test::CurveContract<Curves> {};
TYPED_TEST_SUITE(statements, test::Engines);

std::int64_t integer(const Value& value) { return std::get<std::int64_t>(value); }

// Meter 1 (two calibrations, ids 1 and 2) with series "Rotor A" of the first and of the second one.
template <class Curves>
struct TwoCalibrations : Curves {
  TwoCalibrations() {
    this->execute(
        "Insert into meter (SerialNumber,SerialNumberAdjusted,ReCalID) VALUES('TF-1','TF-1a',0)");
    this->execute("Insert into meter (SerialNumber,ReCalID) VALUES('TF-1',1)");
    this->execute("Insert into series (name,meterid) VALUES('Rotor A',1)");
    this->execute("Insert into series (name,meterid) VALUES('Rotor A',2)");
    this->execute("Insert into masterMeterList (ID,SerialNumber,ReCalID) VALUES(9,'MM-1',3)");
  }
};

TYPED_TEST(statements, the_latest_calibration_comes_first) {
  const TwoCalibrations<TypeParam> file;
  const auto rows = file.select(
      "SELECT TOP 1 ID, ReCalID, SerialNumberAdjusted from meter where serialnumber='tf-1' ORDER "
      "BY ReCalID DESC");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(integer(rows->value("id")), 2);
  EXPECT_EQ(rows->value("serialnumberadjusted"), Value());
}

TYPED_TEST(statements, a_series_is_found_with_its_meter) {
  const TwoCalibrations<TypeParam> file;
  const auto rows = file.select(
      "SELECT series.ID AS seriesID,meter.ID, meter.ReCalID, meter.SerialNumberAdjusted from "
      "series left "
      "join meter on series.meterid=meter.id where serialnumber='TF-1' AND recalid=0 AND "
      "series.name = "
      "'rotor a' ORDER BY ReCalID DESC");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(integer(rows->value("SeriesID")), 1);
  EXPECT_EQ(integer(rows->value("id")), 1);
  EXPECT_EQ(rows->value("serialNumberAdjusted"), Value("TF-1a"));
}

TYPED_TEST(statements, all_columns_of_one_table_of_a_join_can_be_asked_for) {
  const TwoCalibrations<TypeParam> file;
  const auto rows = file.select(
      "SELECT TOP 1 series.*, meter.recalid, meter.serialnumberadjusted from series left join "
      "meter on "
      "series.meterid=meter.id where series.name = 'Rotor A' and meter.serialnumber='TF-1' ORDER "
      "BY "
      "meter.recalid DESC");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(rows->fieldCount(), 5U);
  EXPECT_EQ(integer(rows->value("id")), 2);
  EXPECT_EQ(integer(rows->value("meterid")), 2);
  EXPECT_EQ(integer(rows->value("reCalID")), 1);
}

TYPED_TEST(statements, a_meter_without_series_is_listed_with_a_null) {
  const TwoCalibrations<TypeParam> file;
  file.execute("DELETE Series.* from series where id=2");
  const auto rows = file.select(
      "Select distinct serialnumber, name from meter left join series on meter.id=series.meterid  "
      "where "
      "serialnumber = 'TF-1' and recalid =1");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(rows->value(0), Value("TF-1"));
  EXPECT_EQ(rows->value(1), Value());
}

TYPED_TEST(statements, distinct_serial_numbers_are_told_once) {
  const TwoCalibrations<TypeParam> file;
  file.execute("Insert into meter (SerialNumber,ReCalID) VALUES('tf-1',2)");
  EXPECT_EQ(file.select("Select distinct serialnumber from meter")->recordCount(), 1);
}

TYPED_TEST(statements, deleting_a_series_leaves_the_other_rows) {
  const TwoCalibrations<TypeParam> file;
  file.execute("INSERT INTO raw1 ( seriesID,   Roshko,   Strouhal ) Values (1,10.5,2)");
  file.execute("DELETE Series.* from series where id=1");
  EXPECT_EQ(file.count("series"), 1);
  EXPECT_EQ(file.count("raw1"), 1);
}

TYPED_TEST(statements, a_set_up_is_found_by_fluid_and_meter) {
  const TwoCalibrations<TypeParam> file;
  file.execute("Insert into Fluids (Name) VALUES ('Water')");
  file.execute("Insert into Operator (Name) VALUES ('Unknown')");
  file.execute(
      "Insert into Calsetup (meterID,Stand,MeterPosition,OperatorID,FluidID,DateTaken) "
      "VALUES(1,-1,2,1,1,#03/14/2019#)");
  const auto rows = file.select(
      "SELECT CalSetup.* FROM Fluids RIGHT JOIN CalSetup ON Fluids.ID = CalSetup.FluidID WHERE "
      "(((Fluids.Name)='water') AND ((CalSetup.MeterID)=1));");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(integer(rows->value("ID")), 1);
  EXPECT_EQ(integer(rows->value("Stand")), -1);
  EXPECT_EQ(rows->value("DateTaken"), Value("2019-03-14"));
  EXPECT_EQ(
      file.select("Select ID from CalSetup where meterID=1 ORDER BY stand, ID ASC")->recordCount(),
      1);
}

TYPED_TEST(statements, jobs_are_found_through_bracketed_joins) {
  const TwoCalibrations<TypeParam> file;
  file.execute("Insert into Calsetup (meterID,Stand) VALUES(2,1)");
  file.execute("Insert into CalDataPoint (CalSetupID,JobRecordID) VALUES(1,1042)");
  const auto rows = file.select(
      "SELECT TOP 1 CalDatapoint.JobRecordID FROM (Meter LEFT JOIN CalSetup ON Meter.ID = "
      "CalSetup.MeterID) LEFT JOIN CalDatapoint ON CalSetup.ID = CalDatapoint.CalSetupID WHERE "
      "Meter.SerialNumber='TF-1'  ORDER BY ReCalID DESC");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(integer(rows->value("JobRecordID")), 1042);
}

template <class Curves>
struct OneDataPoint : Curves {
  explicit OneDataPoint(const std::string& v3 = "20") {
    this->execute(
        "Insert into CalDataPoint (CalSetupID,JobRecordID,V1,V2,V3,V4,V5,V12,V20,V21) "
        "VALUES(7,1001,10,25," +
        v3 + ",400,2,80,16,240)");
  }
};

constexpr const char* rotorA =
    "INSERT INTO raw1 ( seriesID,   Roshko,   Strouhal ) SELECT 5 AS SeriesID, "
    "[v4]/[v3]/[v5]*(1+((1.92E-05)*([v12]-70))) AS Roshko, "
    "([v4]/[v3])/([v2]/[v1])*(1+((2.88E-05)*([v12]-70))) AS Strouhal FROM CalDataPoint WHERE "
    "(((CalDataPoint.calSetupID)=7));";

TYPED_TEST(statements, a_rotor_series_is_derived_inside_the_database) {
  const OneDataPoint<TypeParam> file;
  file.execute(rotorA);
  const auto rows = file.select("Select roshko, strouhal from raw1 where seriesID = 5");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_DOUBLE_EQ(std::get<double>(rows->value("Roshko")), 10.0 * (1 + 0.0000192 * 10));
  EXPECT_DOUBLE_EQ(std::get<double>(rows->value("Strouhal")), 8.0 * (1 + 0.0000288 * 10));
}

TYPED_TEST(statements, a_sum_series_is_derived_inside_the_database) {
  const OneDataPoint<TypeParam> file;
  file.execute(
      "INSERT INTO Raw2 ( seriesID,   Roshko,   Strouhal ) SELECT 6 AS SeriesID, "
      "([v4]/[v3]/[v5]*(1+((1.92E-05)*([v12]-70)))) + "
      "([v21]/[v20]/[v5]*(1+((1.92E-05)*([v12]-70)))) AS "
      "Roshko, ([v4]/[v3])/([v21]/[v20]) AS Strouhal FROM CalDataPoint WHERE "
      "(((CalDataPoint.CalSetupID)=7));");
  const auto rows = file.select("Select roshko, strouhal from raw2 where seriesID = 6");
  EXPECT_DOUBLE_EQ(std::get<double>(rows->value(0)), 17.5 * (1 + 0.0000192 * 10));
  EXPECT_DOUBLE_EQ(std::get<double>(rows->value(1)), 400.0 / 20 / 15);
}

TYPED_TEST(statements, division_by_zero_in_one_row_inserts_none) {
  const OneDataPoint<TypeParam> file("20");
  file.execute("Insert into CalDataPoint (CalSetupID,V1,V2,V3,V4,V5,V12) VALUES(7,1,1,0,1,1,70)");
  const auto failure = failureOf([&] { file.execute(rotorA); });
  EXPECT_EQ(failure.number, 11);
  EXPECT_EQ(failure.description, "Division by zero");
  EXPECT_EQ(file.count("raw1"), 0);
}

TYPED_TEST(statements, overflow_in_one_row_inserts_none) {
  const OneDataPoint<TypeParam> file("1E-308");
  const auto failure = failureOf([&] { file.execute(rotorA); });
  EXPECT_EQ(failure.number, 6);
  EXPECT_EQ(failure.description, "Overflow");
  EXPECT_EQ(file.count("raw1"), 0);
}

TYPED_TEST(statements, null_in_a_formula_gives_null) {
  const OneDataPoint<TypeParam> file("NULL");
  file.execute(rotorA);
  const auto rows = file.select("Select roshko from raw1 where seriesID=5");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(rows->value(0), Value());
}

TYPED_TEST(statements, words_in_a_formula_are_a_type_mismatch) {
  const TypeParam file;
  file.execute("Insert into CalDataPoint (CalSetupID,JobRecordID) VALUES(7,'bad')");
  EXPECT_EQ(failureOf([&] {
              file.execute(
                  "Insert into raw1 (seriesID, Roshko) Select 5 as seriesID, JobRecordID*2 as "
                  "Roshko from CalDataPoint");
            }).description,
            "Data type mismatch in criteria expression.");
  EXPECT_EQ(file.count("raw1"), 0);
}

TYPED_TEST(statements, whole_numbers_are_divided_exactly) {
  const TypeParam file;
  EXPECT_EQ(file.select("SELECT 7/2")->value(0), Value(3.5));
}

}  // namespace
}  // namespace pelmora
