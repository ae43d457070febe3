// Statements and results of Series, MetersAdjusted, Meters and getJobID.
// SPDX-License-Identifier: MIT
#include "component/lookups.h"
#include "tests/support/operation_test.h"

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string readMeter(const std::string& serialNumber) {
  return "SELECT TOP 1 ID, ReCalID, SerialNumberAdjusted from meter where serialnumber='" +
         serialNumber + "' ORDER BY ReCalID DESC";
}
const std::string listOfM1 =
    "Select distinct serialnumber, name from meter left join series on meter.id=series.meterid  "
    "where "
    "serialnumber = 'M1' and recalid =3";
const std::string listOfAll =
    "Select distinct serialnumber, name from meter left join series on meter.id=series.meterid ";
const Rows meterRow{{"ID", "ReCalID", "SerialNumberAdjusted"},
                    {{std::int64_t{7}, std::int64_t{3}, Value()}}};

class Series : public ScriptedOperationTest {
 protected:
  ValueTable list(const std::string& MeterSN = "M1") { return listSeries(context, MeterSN, -1); }
};

TEST_F(Series, of_a_meter_come_as_columns_of_rows) {
  script->answer(readMeter("M1"), meterRow);
  script->answer(listOfM1, {{"serialnumber", "name"},
                            {{std::string("M1"), std::string("Rotor A")},
                             {std::string("M1"), std::string("Ratio")}}});
  const ValueTable table = list();
  ASSERT_EQ(table.columns(), 2U);
  ASSERT_EQ(table.rows(), 2U);
  EXPECT_EQ(table(0, 1), Value(std::string("M1")));
  EXPECT_EQ(table(1, 0), Value(std::string("Rotor A")));
  EXPECT_EQ(table(1, 1), Value(std::string("Ratio")));
}

TEST_F(Series, of_the_latest_calibration_are_asked_for_by_its_resolved_number) {
  script->answer(readMeter("M1"), meterRow);
  (void)list();
  EXPECT_THAT(log(), ElementsAre("open", "read " + readMeter("M1"), "read " + listOfM1, "close"));
}

TEST_F(Series, of_a_meter_without_any_are_empty) {
  script->answer(readMeter("M1"), meterRow);
  script->answer(listOfM1, {{"serialnumber", "name"}, {{std::string("M1"), Value()}}});
  EXPECT_TRUE(list().empty());
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(Series, keep_a_null_name_beside_other_rows) {
  script->answer(readMeter(""), meterRow);
  script->answer(listOfAll,
                 {{"serialnumber", "name"},
                  {{std::string("M1"), Value()}, {std::string("M2"), std::string("Ratio")}}});
  const ValueTable table = list("");
  ASSERT_EQ(table.rows(), 2U);
  EXPECT_EQ(table(1, 0), Value());
}

TEST_F(Series, of_an_empty_serial_number_are_those_of_all_meters) {
  script->answer(readMeter(""), meterRow);
  (void)list("");
  EXPECT_THAT(log(), ElementsAre("open", "read " + readMeter(""), "read " + listOfAll, "close"));
}

TEST_F(Series, of_a_meter_in_the_master_list_alone_are_not_asked_for) {
  const std::string master =
      "SELECT TOP 1 ID, ReCalID from masterMeterList where serialnumber='M1' ORDER BY ReCalID DESC";
  script->answer(master, {{"ID", "ReCalID"}, {{std::int64_t{40}, std::int64_t{3}}}});
  EXPECT_TRUE(list().empty());
  EXPECT_THAT(log(), ElementsAre("open", "read " + readMeter("M1"), "read " + master, "close"));
}

const std::string readAdjusted =
    "Select SerialNumberAdjusted, recalid from meter where SerialNumber = 'M1' order by recalid "
    "desc";

class MetersAdjustedOf : public ScriptedOperationTest {
 protected:
  std::vector<std::string> list() { return MetersAdjusted(context, "M1", ArrayIsEmpty, ReCalID); }

  bool ArrayIsEmpty = false;
  std::vector<std::int16_t> ReCalID{77};
};

TEST_F(MetersAdjustedOf, a_meter_come_with_their_recal_numbers) {
  script->answer(readAdjusted,
                 {{"SerialNumberAdjusted", "recalid"},
                  {{std::string("M1-b"), std::int64_t{1}}, {Value(), std::int64_t{0}}}});
  EXPECT_THAT(list(), ElementsAre("M1-b", ""));
  EXPECT_THAT(ReCalID, ElementsAre(1, 0));
  EXPECT_FALSE(ArrayIsEmpty);
  EXPECT_THAT(log(), ElementsAre("open", "read " + readAdjusted, "close"));
}

TEST_F(MetersAdjustedOf, an_unknown_meter_leave_the_out_array_as_it_was) {
  EXPECT_THAT(list(), IsEmpty());
  EXPECT_THAT(ReCalID, ElementsAre(77));
  EXPECT_TRUE(ArrayIsEmpty);
}

TEST_F(MetersAdjustedOf, a_failing_database_are_empty) {
  script->fail(readAdjusted, refused);
  EXPECT_THAT(list(), IsEmpty());
  EXPECT_TRUE(ArrayIsEmpty);
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:meters", "Syntax error")));
}

class MetersOf : public ScriptedOperationTest {
 protected:
  std::vector<std::string> list() { return Meters(context, ArrayIsEmpty); }

  bool ArrayIsEmpty = false;
};

TEST_F(MetersOf, a_database_are_all_serial_numbers) {
  script->answer("Select distinct serialnumber from meter",
                 {{"serialnumber"}, {{std::string("M1")}, {std::string("M2")}}});
  EXPECT_THAT(list(), ElementsAre("M1", "M2"));
  EXPECT_FALSE(ArrayIsEmpty);
  EXPECT_THAT(log(), ElementsAre("open", "read Select distinct serialnumber from meter", "close"));
}

TEST_F(MetersOf, an_empty_table_are_none) {
  EXPECT_THAT(list(), IsEmpty());
  EXPECT_TRUE(ArrayIsEmpty);
}

TEST_F(MetersOf, a_failing_database_are_none) {
  script->fail("Select distinct serialnumber from meter", refused);
  EXPECT_THAT(list(), IsEmpty());
  EXPECT_TRUE(ArrayIsEmpty);
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:meters", "Syntax error")));
}

const std::string jobsFrom =
    " CalDatapoint.JobRecordID FROM (Meter LEFT JOIN CalSetup ON Meter.ID = CalSetup.MeterID) LEFT "
    "JOIN "
    "CalDatapoint ON CalSetup.ID = CalDatapoint.CalSetupID WHERE Meter.SerialNumber='M1' ";

class getJobIDOf : public ScriptedOperationTest {};

TEST_F(getJobIDOf, the_latest_calibration_is_at_most_one_job) {
  const std::string statement = "SELECT TOP 1" + jobsFrom + " ORDER BY ReCalID DESC";
  script->answer(statement, {{"JobRecordID"}, {{std::int64_t{1001}}}});
  EXPECT_THAT(getJobID(context, "M1", -1), ElementsAre("1001"));
  EXPECT_THAT(log(), ElementsAre("open", "read " + statement, "close"));
}

TEST_F(getJobIDOf, a_numbered_calibration_is_one_job_per_row) {
  const std::string statement = "SELECT" + jobsFrom + " AND recalid=2 ORDER BY ReCalID DESC";
  script->answer(statement,
                 {{"JobRecordID"}, {{std::string("1004")}, {1003.0}, {std::string("1003")}}});
  EXPECT_THAT(getJobID(context, "M1", 2), ElementsAre("1004", "1003", "1003"));
  EXPECT_THAT(log(), ElementsAre("open", "read " + statement, "close"));
}

TEST_F(getJobIDOf, a_failing_database_is_empty) {
  script->fail("SELECT TOP 1" + jobsFrom + " ORDER BY ReCalID DESC", refused);
  EXPECT_THAT(getJobID(context, "M1", -1), IsEmpty());
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:getJobID", "Syntax error")));
}

}  // namespace
}  // namespace pelmora::test
