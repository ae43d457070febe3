// The look-ups on a real curve database.
// SPDX-License-Identifier: MIT
#include "component/lookups.h"
#include "tests/support/curve_database.h"

namespace pelmora::test {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

class lookups : public CurveDatabaseTest {
 protected:
  lookups() {
    addMeter(1, "M1", 0, "M1 first");
    addMeter(2, "M1", 3, "M1 latest");
    addMeter(3, "M1", 1);
    addSeries(11, "Rotor A", 1);
    addSeries(12, "Rotor A", 2);
    addSeries(13, "Ratio", 1);
    addMaster(40, "M1", 9);
    addMaster(41, "only listed", 2);
    addMaster(42, "only listed", 5);
  }
  MeterInfo find(const std::string& MeterSN, std::int16_t ReCalID = -1,
                 const std::string& series = "") {
    return findMeterInfo(context, MeterSN, nullptr, ReCalID, series);
  }
};

TEST_F(lookups, find_the_calibration_with_the_largest_recal_number) {
  EXPECT_EQ(find("M1"), (MeterInfo{1, 2, 3, "M1", "M1 latest", {}}));
  EXPECT_EQ(FindLastCalID(context, "M1", nullptr), (MeterInfo{1, 2, 3, "M1", "M1 latest", {}}));
}

TEST_F(lookups, find_a_numbered_calibration) {
  EXPECT_EQ(find("M1", 0), (MeterInfo{1, 1, 0, "M1", "M1 first", {}}));
}

TEST_F(lookups, compare_serial_numbers_and_series_names_without_regard_to_case) {
  const MeterInfo record = find("m1", -1, "ROTOR a");
  EXPECT_EQ(record.MeterID, 2);
  EXPECT_EQ(record.SerialNumber, "m1");
  ASSERT_THAT(record.Series, SizeIs(1));
  EXPECT_EQ(record.Series[0].SeriesID, 12);
  EXPECT_EQ(record.Series[0].SeriesName, "ROTOR a");
}

TEST_F(lookups, find_the_latest_calibration_that_has_the_series) {
  const MeterInfo record = find("M1", -1, "Ratio");
  EXPECT_EQ(record.MeterID, 1);
  EXPECT_EQ(record.ReCalID, 0);
  ASSERT_THAT(record.Series, SizeIs(1));
  EXPECT_EQ(record.Series[0].SeriesID, 13);
}

TEST_F(lookups, fall_back_on_the_master_list_for_a_missing_series) {
  EXPECT_EQ(find("M1", -1, "Rotor Sum"), (MeterInfo{2, 40, 9, "M1", "", {}}));
}

TEST_F(lookups, find_the_latest_entry_of_the_master_list) {
  EXPECT_EQ(find("only listed"), (MeterInfo{2, 42, 5, "only listed", "", {}}));
  EXPECT_EQ(FindLastCalID(context, "only listed", nullptr),
            (MeterInfo{2, 42, 5, "only listed", "", {}}));
}

TEST_F(lookups, find_a_numbered_entry_of_the_master_list) {
  EXPECT_EQ(find("only listed", 2), (MeterInfo{2, 41, 2, "only listed", "", {}}));
}

TEST_F(lookups, do_not_find_a_number_that_no_calibration_has) {
  EXPECT_EQ(find("M1", 7), (MeterInfo{-1, -1, 0, "", "", {}}));
}

TEST_F(lookups, give_an_unknown_meter_minus_one_or_zero) {
  EXPECT_EQ(find("M9"), (MeterInfo{-1, -1, 0, "", "", {}}));
  EXPECT_EQ(FindLastCalID(context, "M9", nullptr), (MeterInfo{-1, 0, 0, "", "", {}}));
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(lookups, break_on_a_quote_in_the_serial_number) {
  EXPECT_EQ(find("M'1").Source, -1);
  EXPECT_EQ(FindLastCalID(context, "M'1", nullptr).Source, -1);
  EXPECT_EQ(getSeriesID(context, "Ratio", "M'1", nullptr, -1).Source, -1);
  EXPECT_THAT(boxes, testing::ElementsAre(errorBoxOf("Error in RawData:findMeterInfo"),
                                          errorBoxOf("Error in RawData:LastCalID"),
                                          errorBoxOf("Error in Misc:getSeriesID")));
}

TEST_F(lookups, find_what_a_made_up_name_asks_for) {
  const MeterInfo record = find("M1", -1, "x' OR 'a'='a");
  ASSERT_THAT(record.Series, SizeIs(1));
  EXPECT_EQ(record.Series[0].SeriesID, 12);  // of the series "Rotor A"
}

TEST_F(lookups, let_no_second_statement_in) {
  EXPECT_EQ(find("M1'; DELETE from meter; select '").Source, -1);
  EXPECT_THAT(lines("select * from meter"), SizeIs(3));
  EXPECT_THAT(boxes, SizeIs(1));
}

TEST_F(lookups, getSeriesID_finds_the_latest_calibration_of_the_series) {
  const MeterInfo record = getSeriesID(context, "rotor a", "m1", nullptr, -1);
  EXPECT_EQ(record.MeterID, 2);
  EXPECT_EQ(record.ReCalID, 3);
  EXPECT_EQ(record.SerialNumberAdjusted, "M1 latest");
  ASSERT_THAT(record.Series, SizeIs(1));
  EXPECT_EQ(record.Series[0].SeriesID, 12);
}

TEST_F(lookups, getSeriesID_finds_a_numbered_calibration_and_never_the_master_list) {
  EXPECT_EQ(getSeriesID(context, "Rotor A", "M1", nullptr, 0).Series.at(0).SeriesID, 11);
  EXPECT_EQ(getSeriesID(context, "Ratio", "M1", nullptr, 3), MeterInfo());
  EXPECT_EQ(getSeriesID(context, "Ratio", "only listed", nullptr, -1), MeterInfo());
  EXPECT_EQ(getSeriesID(context, "Rotor A", "M1", nullptr, -2), MeterInfo());
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(lookups, say_which_file_is_missing) {
  shared.location = splitLocation(scratch.file("nowhere.db"));
  EXPECT_EQ(find("M1").Source, -1);
  ASSERT_THAT(boxes, SizeIs(1));
  EXPECT_THAT(boxes[0].text, testing::StartsWith("Error in RawData:findMeterInfo\r\n"));
  EXPECT_THAT(boxes[0].text, testing::HasSubstr(scratch.file("nowhere.db")));
}

TEST_F(lookups, say_which_table_a_foreign_database_misses) {
  const std::string stand = scratch.file("stand.csv");
  std::ofstream(stand) << standHeader() << "\n";
  shared.location = splitLocation(stand);
  EXPECT_EQ(find("M1").Source, -1);
  ASSERT_THAT(boxes, SizeIs(1));
  EXPECT_THAT(boxes[0].text, testing::HasSubstr("meter"));
}

}  // namespace
}  // namespace pelmora::test
