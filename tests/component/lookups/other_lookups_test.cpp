// Statements, order and results of FindLastCalID and getSeriesID.
// SPDX-License-Identifier: MIT
#include "component/lookups.h"
#include "tests/support/operation_test.h"

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string lastMeter =
    "SELECT TOP 1 ID, ReCalID, SerialNumberAdjusted from meter where serialnumber='M1' ORDER BY "
    "ReCalID "
    "DESC";
const std::string lastMaster =
    "SELECT TOP 1 ID, ReCalID from masterMeterList where serialnumber='M1' ORDER BY ReCalID DESC";

class FindLastCalIDOf : public ScriptedOperationTest {
 protected:
  MeterInfo find() { return FindLastCalID(context, "M1", openConnection()); }
};

TEST_F(FindLastCalIDOf, a_meter_is_its_latest_calibration) {
  script->answer(lastMeter, {{"ID", "ReCalID", "SerialNumberAdjusted"},
                             {{std::int64_t{7}, std::int64_t{3}, std::string("M1-adj")}}});
  EXPECT_EQ(find(), (MeterInfo{1, 7, 3, "M1", "M1-adj", {}}));
  EXPECT_THAT(log(), ElementsAre("read " + lastMeter));
}

TEST_F(FindLastCalIDOf, a_null_adjusted_number_is_empty) {
  script->answer(lastMeter, {{"ID", "ReCalID", "SerialNumberAdjusted"},
                             {{std::int64_t{7}, std::int64_t{3}, Value()}}});
  EXPECT_EQ(find(), (MeterInfo{1, 7, 3, "M1", "", {}}));
}

TEST_F(FindLastCalIDOf, a_meter_of_the_master_list_has_source_2) {
  script->answer(lastMaster, {{"ID", "ReCalID"}, {{std::int64_t{40}, std::int64_t{2}}}});
  EXPECT_EQ(find(), (MeterInfo{2, 40, 2, "M1", "", {}}));
  EXPECT_THAT(log(), ElementsAre("read " + lastMeter, "read " + lastMaster));
}

TEST_F(FindLastCalIDOf, an_unknown_meter_keeps_meter_id_0) {
  EXPECT_EQ(find(), (MeterInfo{-1, 0, 0, "", "", {}}));
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(FindLastCalIDOf, a_failure_carries_the_name_LastCalID) {
  script->fail(lastMaster, refused);
  EXPECT_EQ(find().Source, -1);
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:LastCalID", "Syntax error")));
}

const std::string latestSeries =
    "SELECT TOP 1 series.*, meter.recalid, meter.serialnumberadjusted from series left join meter "
    "on "
    "series.meterid=meter.id where series.name = 'Ratio' and meter.serialnumber='M1' ORDER BY "
    "meter.recalid DESC";
const std::string seriesOfCalibration =
    "SELECT series.*, meter.recalid, meter.serialnumberadjusted from series left join meter on "
    "series.meterid=meter.id where series.name = 'Ratio' and meter.serialnumber='M1' and "
    "meter.recalid=";

class getSeriesIDOf : public ScriptedOperationTest {
 protected:
  MeterInfo find(std::int16_t ReCalID) {
    return getSeriesID(context, "Ratio", "M1", openConnection(), ReCalID);
  }
};

TEST_F(getSeriesIDOf, a_series_fills_the_record_and_leaves_source_alone) {
  script->answer(latestSeries, {{"ID", "name", "meterid", "recalid", "serialnumberadjusted"},
                                {{std::int64_t{11}, std::string("ratio"), std::int64_t{7},
                                  std::int64_t{3}, std::string("M1-adj")}}});
  SeriesInfo entry;
  entry.SeriesName = "Ratio";
  entry.SeriesID = 11;
  EXPECT_EQ(find(-1), (MeterInfo{0, 7, 3, "M1", "M1-adj", {entry}}));
  EXPECT_THAT(log(), ElementsAre("read " + latestSeries));
}

TEST_F(getSeriesIDOf, a_numbered_calibration_is_named_in_the_statement) {
  (void)find(4);
  EXPECT_THAT(log(), ElementsAre("read " + seriesOfCalibration + "4"));
}

TEST_F(getSeriesIDOf, only_minus_one_means_the_latest_calibration) {
  (void)find(-2);
  EXPECT_THAT(log(), ElementsAre("read " + seriesOfCalibration + "-2"));
}

TEST_F(getSeriesIDOf, no_row_is_an_empty_record_without_a_second_look) {
  EXPECT_EQ(find(-1), MeterInfo());
  EXPECT_THAT(log(), ElementsAre("read " + latestSeries));
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(getSeriesIDOf, a_failure_is_shown_under_the_name_of_its_module) {
  script->fail(latestSeries, refused);
  EXPECT_EQ(find(-1).Source, -1);
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in Misc:getSeriesID", "Syntax error")));
}

}  // namespace
}  // namespace pelmora::test
