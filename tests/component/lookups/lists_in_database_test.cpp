// Lists, registration and deletion on a real curve database.
// SPDX-License-Identifier: MIT
#include "component/lookups.h"
#include "tests/support/curve_database.h"

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class lists : public CurveDatabaseTest {
 protected:
  std::vector<std::string> meters() { return Meters(context, ArrayIsEmpty); }
  std::vector<std::string> series(const std::string& MeterSN, std::int16_t ReCalID = -1) {
    const ValueTable table = listSeries(context, MeterSN, ReCalID);
    std::vector<std::string> rows;
    for (std::size_t row = 0; row < table.rows(); ++row) {
      rows.push_back(toText(table(0, row)) + "|" + toText(table(1, row)));
    }
    return rows;
  }

  bool ArrayIsEmpty = false;
};

TEST_F(lists, of_an_empty_meter_table_are_empty) {
  EXPECT_THAT(meters(), IsEmpty());
  EXPECT_TRUE(ArrayIsEmpty);
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(lists, of_one_meter_hold_its_serial_number) {
  addMeter(1, "M1", 0);
  EXPECT_THAT(meters(), ElementsAre("M1"));
  EXPECT_FALSE(ArrayIsEmpty);
}

TEST_F(lists, name_a_meter_of_several_calibrations_once) {
  addMeter(1, "M1", 0);
  addMeter(2, "m1", 1);
  addMeter(3, "M2", 0);
  EXPECT_THAT(meters(), SizeIs(2));
}

TEST_F(lists, of_series_are_those_of_the_latest_calibration) {
  addMeter(1, "M1", 0);
  addMeter(2, "M1", 1);
  addSeries(11, "Rotor A", 1);
  addSeries(12, "Ratio", 2);
  addSeries(13, "Rotor B", 2);
  EXPECT_THAT(series("M1"), UnorderedElementsAre("M1|Ratio", "M1|Rotor B"));
  EXPECT_THAT(series("M1", 0), ElementsAre("M1|Rotor A"));
}

TEST_F(lists, of_series_are_empty_where_the_latest_calibration_has_none) {
  addMeter(1, "M1", 0);
  addMeter(2, "M1", 1);
  addSeries(11, "Rotor A", 1);
  EXPECT_THAT(series("M1"), IsEmpty());
}

TEST_F(lists, of_series_are_empty_for_a_meter_of_the_master_list) {
  addMaster(40, "M1", 0);
  EXPECT_THAT(series("M1"), IsEmpty());
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(lists, of_adjusted_numbers_begin_with_the_latest_calibration) {
  addMeter(1, "M1", 0, "first");
  run("INSERT INTO meter (ID, SerialNumber, ReCalID) VALUES (2,'M1',2)");
  addMeter(3, "M1", 1, "second");
  std::vector<std::int16_t> recals;
  EXPECT_THAT(MetersAdjusted(context, "M1", ArrayIsEmpty, recals),
              ElementsAre("", "second", "first"));
  EXPECT_THAT(recals, ElementsAre(2, 1, 0));
}

TEST_F(lists, of_jobs_hold_one_of_the_latest_calibration_or_all_of_a_numbered_one) {
  addMeter(1, "M1", 0);
  addMeter(2, "M1", 1);
  run("INSERT INTO CalSetup (ID, MeterID) VALUES (5, 1)");
  run("INSERT INTO CalSetup (ID, MeterID) VALUES (6, 2)");
  for (const char* job : {"1001", "1002"}) {
    run(std::string("INSERT INTO CalDataPoint (CalSetupID, JobRecordID) VALUES (5,") + job + ")");
    run(std::string("INSERT INTO CalDataPoint (CalSetupID, JobRecordID) VALUES (6,1003)"));
  }
  EXPECT_THAT(getJobID(context, "M1", -1), ElementsAre("1003"));
  EXPECT_THAT(getJobID(context, "M1", 0), UnorderedElementsAre("1001", "1002"));
  EXPECT_THAT(getJobID(context, "M9", -1), IsEmpty());
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(lists, break_on_a_quote) {
  std::vector<std::int16_t> recals;
  EXPECT_THAT(MetersAdjusted(context, "M'1", ArrayIsEmpty, recals), IsEmpty());
  EXPECT_TRUE(ArrayIsEmpty);
  EXPECT_THAT(getJobID(context, "M'1", -1), IsEmpty());
  EXPECT_THAT(series("M'1"), IsEmpty());
  EXPECT_THAT(boxes, ElementsAre(errorBoxOf("Error in RawData:meters"),
                                 errorBoxOf("Error in RawData:getJobID"),
                                 errorBoxOf("Error in RawData:findMeterInfo")));
}

const std::string allMeters =
    "select SerialNumber, SerialNumberAdjusted, ReCalID from meter order by ID";

class registration : public CurveDatabaseTest {
 protected:
  std::int32_t add(const std::string& MeterSN, std::string adjusted = "") {
    return setMeterSN(context, MeterSN, adjusted);
  }
};

TEST_F(registration, of_a_new_meter_has_recal_number_0) {
  const std::int32_t id = add("M1", "M1 adjusted");
  EXPECT_THAT(lines(allMeters), ElementsAre("M1|M1 adjusted|0"));
  EXPECT_THAT(lines("select ID from meter"), ElementsAre(std::to_string(id)));
}

TEST_F(registration, without_an_adjusted_number_stores_the_serial_number_twice) {
  (void)add("M1");
  EXPECT_THAT(lines(allMeters), ElementsAre("M1|M1|0"));
}

TEST_F(registration, of_a_known_meter_adds_a_row_and_changes_none) {
  addMeter(1, "M1", 3, "old");
  const std::int32_t id = add("m1", "new");
  EXPECT_NE(id, 1);
  EXPECT_THAT(lines(allMeters), ElementsAre("M1|old|3", "m1|new|4"));
}

TEST_F(registration, of_a_meter_of_the_master_list_goes_on_from_there) {
  addMaster(40, "M1", 2);
  (void)add("M1");
  EXPECT_THAT(lines(allMeters), ElementsAre("M1|M1|3"));
  EXPECT_THAT(lines("select * from masterMeterList"), ElementsAre("40|M1|2"));
}

TEST_F(registration, adds_a_row_on_every_call) {
  for (int i = 0; i < 3; ++i) (void)add("M1");
  EXPECT_THAT(lines(allMeters), ElementsAre("M1|M1|0", "M1|M1|1", "M1|M1|2"));
}

TEST_F(registration, past_the_last_recal_number_adds_nothing) {
  addMeter(1, "M1", 32767);
  EXPECT_EQ(add("M1"), 0);
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:setMeterSN", "Overflow")));
  EXPECT_THAT(lines(allMeters), SizeIs(1));
}

TEST_F(registration, breaks_on_a_quote) {
  EXPECT_EQ(add("M'1"), 0);
  EXPECT_THAT(boxes, ElementsAre(errorBoxOf("Error in RawData:LastCalID"),
                                 errorBoxOf("Error in RawData:setMeterSN")));
  EXPECT_THAT(lines(allMeters), IsEmpty());
}

TEST_F(registration, deleting_a_series_leaves_its_points_and_the_same_name_elsewhere) {
  addMeter(1, "M1", 0);
  addMeter(2, "M1", 1);
  addSeries(11, "Ratio", 1);
  addSeries(12, "Ratio", 2);
  for (const char* table : {"raw1", "merge", "curve"}) {
    run(std::string("INSERT INTO ") + table + " (seriesID, Roshko, Strouhal) VALUES (12, 1, 2)");
  }
  run("INSERT INTO DataFitResults (seriesID, summary) VALUES (12, 'fit')");
  EXPECT_TRUE(DeleteSeries(context, "M1", "Ratio", -1));
  EXPECT_THAT(lines("select ID from series"), ElementsAre("11"));
  for (const char* table : {"raw1", "merge", "curve", "DataFitResults"}) {
    EXPECT_THAT(lines(std::string("select seriesID from ") + table), ElementsAre("12")) << table;
  }
}

TEST_F(registration, deleting_with_a_quote_deletes_nothing) {
  addMeter(1, "M1", 0);
  addSeries(11, "Ratio", 1);
  EXPECT_FALSE(DeleteSeries(context, "M1", "Ra'tio", -1));
  EXPECT_THAT(lines("select ID from series"), ElementsAre("11"));
  EXPECT_THAT(boxes, ElementsAre(errorBoxOf("Error in RawData:findMeterInfo")));
}

}  // namespace
}  // namespace pelmora::test
