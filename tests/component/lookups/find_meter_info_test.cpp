// Statements, order and results of findMeterInfo.
// SPDX-License-Identifier: MIT
#include "component/lookups.h"
#include "tests/support/operation_test.h"

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string latestMeter =
    "SELECT TOP 1 ID, ReCalID, SerialNumberAdjusted from meter where serialnumber='M1' ORDER BY "
    "ReCalID "
    "DESC";
const std::string latestMaster =
    "SELECT TOP 1 ID, ReCalID from masterMeterList where serialnumber='M1' ORDER BY ReCalID DESC";
const std::string latestSeries =
    "SELECT TOP 1 series.ID AS seriesID,meter.ID, meter.ReCalID, meter.SerialNumberAdjusted from "
    "series "
    "left join meter on series.meterid=meter.id where serialnumber='M1' AND series.name = 'Rotor "
    "A' ORDER "
    "BY ReCalID DESC";

Rows meterRow(std::int64_t id, std::int64_t recal, Value adjusted) {
  return {{"ID", "ReCalID", "SerialNumberAdjusted"}, {{id, recal, std::move(adjusted)}}};
}
Rows seriesRow(std::int64_t series, std::int64_t meter, std::int64_t recal) {
  return {{"seriesID", "ID", "ReCalID", "SerialNumberAdjusted"},
          {{series, meter, recal, std::string("M1-adj")}}};
}
Rows masterRow(std::int64_t id, std::int64_t recal) { return {{"ID", "ReCalID"}, {{id, recal}}}; }

class findMeterInfoOf : public ScriptedOperationTest {
 protected:
  MeterInfo find(std::int16_t ReCalID = -1, const std::string& SeriesName = "") {
    return findMeterInfo(context, "M1", openConnection(), ReCalID, SeriesName);
  }
};

TEST_F(findMeterInfoOf, the_latest_calibration_asks_for_the_top_row) {
  script->answer(latestMeter, meterRow(7, 3, std::string("M1-adj")));
  EXPECT_EQ(find(), (MeterInfo{1, 7, 3, "M1", "M1-adj", {}}));
  EXPECT_THAT(log(), ElementsAre("read " + latestMeter));
}

TEST_F(findMeterInfoOf, every_negative_number_means_the_latest_calibration) {
  script->answer(latestMeter, meterRow(7, 3, Value()));
  EXPECT_EQ(find(-32768).MeterID, 7);
  EXPECT_THAT(log(), ElementsAre("read " + latestMeter));
}

TEST_F(findMeterInfoOf, a_numbered_calibration_is_named_in_the_statement) {
  const std::string statement =
      "SELECT ID, ReCalID, SerialNumberAdjusted from meter where serialnumber='M1' AND recalid=0 "
      "ORDER BY "
      "ReCalID DESC";
  script->answer(statement, meterRow(5, 0, Value()));
  EXPECT_EQ(find(0), (MeterInfo{1, 5, 0, "M1", "", {}}));
  EXPECT_THAT(log(), ElementsAre("read " + statement));
}

TEST_F(findMeterInfoOf, the_first_of_several_rows_wins) {
  const std::string statement =
      "SELECT ID, ReCalID, SerialNumberAdjusted from meter where serialnumber='M1' AND recalid=2 "
      "ORDER BY "
      "ReCalID DESC";
  Rows rows = meterRow(9, 2, Value());
  rows.rows.push_back({std::int64_t{4}, std::int64_t{2}, Value()});
  script->answer(statement, rows);
  EXPECT_EQ(find(2).MeterID, 9);
}

TEST_F(findMeterInfoOf, a_named_series_comes_back_as_the_one_entry) {
  script->answer(latestSeries, seriesRow(11, 7, 3));
  const MeterInfo record = find(-1, "Rotor A");
  SeriesInfo entry;
  entry.SeriesName = "Rotor A";
  entry.SeriesID = 11;
  EXPECT_EQ(record, (MeterInfo{1, 7, 3, "M1", "M1-adj", {entry}}));
  EXPECT_THAT(log(), ElementsAre("read " + latestSeries));
}

TEST_F(findMeterInfoOf, a_series_of_a_numbered_calibration_has_both_clauses) {
  (void)find(12, "Ratio");
  EXPECT_THAT(log(), ElementsAre("read SELECT series.ID AS seriesID,meter.ID, meter.ReCalID, "
                                 "meter.SerialNumberAdjusted from "
                                 "series left join meter on series.meterid=meter.id where "
                                 "serialnumber='M1' AND recalid=12 AND "
                                 "series.name = 'Ratio' ORDER BY ReCalID DESC",
                                 "read SELECT ID, ReCalID from masterMeterList where "
                                 "serialnumber='M1' AND recalid=12 ORDER BY "
                                 "ReCalID DESC"));
}

TEST_F(findMeterInfoOf, a_meter_of_the_master_list_has_no_adjusted_number) {
  script->answer(latestMaster, masterRow(40, 2));
  EXPECT_EQ(find(), (MeterInfo{2, 40, 2, "M1", "", {}}));
  EXPECT_THAT(log(), ElementsAre("read " + latestMeter, "read " + latestMaster));
}

TEST_F(findMeterInfoOf, a_meter_without_that_series_is_looked_up_in_the_master_list) {
  script->answer(latestMeter, meterRow(7, 3, Value()));
  script->answer(latestMaster, masterRow(40, 2));
  const MeterInfo record = find(-1, "Rotor A");
  EXPECT_EQ(record, (MeterInfo{2, 40, 2, "M1", "", {}}));
  EXPECT_THAT(log(), ElementsAre("read " + latestSeries, "read " + latestMaster));
}

TEST_F(findMeterInfoOf, an_unknown_meter_is_nowhere) {
  EXPECT_EQ(find(), (MeterInfo{-1, -1, 0, "", "", {}}));
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(findMeterInfoOf, a_quote_in_the_serial_number_goes_into_the_statement_as_it_is) {
  (void)findMeterInfo(context, "M'1", openConnection(), -1, "");
  EXPECT_EQ(log().front(),
            "read SELECT TOP 1 ID, ReCalID, SerialNumberAdjusted from meter where "
            "serialnumber='M'1' ORDER BY "
            "ReCalID DESC");
}

TEST_F(findMeterInfoOf, a_failure_is_shown_and_gives_source_minus_one) {
  script->fail(latestMeter, refused);
  EXPECT_EQ(find().Source, -1);
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:findMeterInfo", "Syntax error")));
}

TEST_F(findMeterInfoOf, a_null_recal_number_is_an_error) {
  script->answer(latestMeter, {{"ID", "ReCalID", "SerialNumberAdjusted"},
                               {{std::int64_t{7}, Value(), Value()}}});
  EXPECT_EQ(find().Source, -1);
  EXPECT_THAT(boxes,
              ElementsAre(errorBox("Error in RawData:findMeterInfo", "Invalid use of Null")));
}

TEST_F(findMeterInfoOf, a_recal_number_past_16_bits_is_an_overflow) {
  script->answer(latestMeter, meterRow(7, 32768, Value()));
  EXPECT_EQ(find().Source, -1);
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:findMeterInfo", "Overflow")));
}

}  // namespace
}  // namespace pelmora::test
