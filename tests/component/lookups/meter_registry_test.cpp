// Statements and results of setMeterSN and DeleteSeries.
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
const std::string openForUpdate =
    "select id, serialnumber, serialNumberAdjusted, recalid from meter where serialnumber = 'M1'";

Rows meterRow(std::int64_t recal) {
  return {{"ID", "ReCalID", "SerialNumberAdjusted"}, {{std::int64_t{7}, recal, Value()}}};
}

class setMeterSNOf : public ScriptedOperationTest {
 protected:
  setMeterSNOf() { script->generatedId = 20; }
  std::int32_t add() { return setMeterSN(context, "M1", adjusted); }

  std::string adjusted = "M1-adj";
};

TEST_F(setMeterSNOf, a_new_meter_adds_calibration_0) {
  EXPECT_EQ(add(), 21);
  EXPECT_THAT(
      log(), ElementsAre("open", "read " + lastMeter, "read " + lastMaster, "read " + openForUpdate,
                         "add serialnumber=M1 serialnumberadjusted=M1-adj ReCalID=0", "close"));
}

TEST_F(setMeterSNOf, a_known_meter_adds_the_calibration_after_its_latest) {
  script->answer(lastMeter, meterRow(3));
  EXPECT_EQ(add(), 21);
  EXPECT_THAT(log(),
              ElementsAre("open", "read " + lastMeter, "read " + openForUpdate,
                          "add serialnumber=M1 serialnumberadjusted=M1-adj ReCalID=4", "close"));
}

TEST_F(setMeterSNOf, a_meter_of_the_master_list_goes_on_from_its_number) {
  script->answer(lastMaster, {{"ID", "ReCalID"}, {{std::int64_t{40}, std::int64_t{2}}}});
  (void)add();
  EXPECT_THAT(log(),
              testing::Contains("add serialnumber=M1 serialnumberadjusted=M1-adj ReCalID=3"));
}

TEST_F(setMeterSNOf, an_empty_adjusted_number_is_the_serial_number_also_for_the_caller) {
  adjusted.clear();
  (void)add();
  EXPECT_EQ(adjusted, "M1");
  EXPECT_THAT(log(), testing::Contains("add serialnumber=M1 serialnumberadjusted=M1 ReCalID=0"));
}

TEST_F(setMeterSNOf, any_meter_tells_the_host) {
  (void)add();
  EXPECT_THAT(events, ElementsAre("Saving meter serial number M1"));
}

TEST_F(setMeterSNOf, any_meter_tells_the_host_before_anything_is_opened) {
  std::size_t stepsBefore = 99;
  const OperationContext telling(shared, platform(),
                                 [&](const std::string&) { stepsBefore = log().size(); });
  (void)setMeterSN(telling, "M1", adjusted);
  EXPECT_EQ(stepsBefore, 0U);
}

TEST_F(setMeterSNOf, a_meter_with_the_last_recal_number_is_an_overflow) {
  script->answer(lastMeter, meterRow(32767));
  EXPECT_EQ(add(), 0);
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:setMeterSN", "Overflow")));
  EXPECT_EQ(log().back(), "close");
}

TEST_F(setMeterSNOf, a_failing_database_is_0) {
  script->fail(openForUpdate, refused);
  EXPECT_EQ(add(), 0);
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:setMeterSN", "Syntax error")));
  EXPECT_EQ(log().back(), "close");
}

TEST_F(setMeterSNOf, a_failing_look_up_shows_its_own_box_and_counts_as_not_found) {
  script->fail(lastMeter, refused);
  EXPECT_EQ(add(), 21);
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:LastCalID", "Syntax error")));
  EXPECT_THAT(log(),
              testing::Contains("add serialnumber=M1 serialnumberadjusted=M1-adj ReCalID=0"));
}

const std::string findSeries =
    "SELECT TOP 1 series.ID AS seriesID,meter.ID, meter.ReCalID, meter.SerialNumberAdjusted from "
    "series "
    "left join meter on series.meterid=meter.id where serialnumber='M1' AND series.name = 'Ratio' "
    "ORDER BY "
    "ReCalID DESC";
const Rows seriesRow{{"seriesID", "ID", "ReCalID", "SerialNumberAdjusted"},
                     {{std::int64_t{11}, std::int64_t{7}, std::int64_t{3}, Value()}}};

class DeleteSeriesOf : public ScriptedOperationTest {};

TEST_F(DeleteSeriesOf, a_meter_deletes_the_series_row_alone) {
  script->answer(findSeries, seriesRow);
  EXPECT_TRUE(DeleteSeries(context, "M1", "Ratio", -1));
  EXPECT_THAT(log(), ElementsAre("open", "read " + findSeries,
                                 "execute DELETE Series.* from series where id=11", "close"));
}

TEST_F(DeleteSeriesOf, a_series_that_is_not_there_deletes_nothing) {
  EXPECT_FALSE(DeleteSeries(context, "M1", "Ratio", -1));
  EXPECT_THAT(log(), ElementsAre("open", "read " + findSeries, "read " + lastMaster, "close"));
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(DeleteSeriesOf, a_meter_of_the_master_list_deletes_nothing) {
  script->answer(lastMaster, {{"ID", "ReCalID"}, {{std::int64_t{40}, std::int64_t{2}}}});
  EXPECT_FALSE(DeleteSeries(context, "M1", "Ratio", -1));
  EXPECT_THAT(log(), ElementsAre("open", "read " + findSeries, "read " + lastMaster, "close"));
}

TEST_F(DeleteSeriesOf, an_empty_name_finds_the_meter_but_no_series) {
  script->answer(lastMeter, meterRow(3));
  EXPECT_FALSE(DeleteSeries(context, "M1", "", -1));
  EXPECT_THAT(log(), ElementsAre("open", "read " + lastMeter, "close"));
}

TEST_F(DeleteSeriesOf, a_numbered_calibration_is_named_in_the_statement) {
  EXPECT_FALSE(DeleteSeries(context, "M1", "Ratio", 2));
  EXPECT_THAT(log().at(1), testing::HasSubstr(" AND recalid=2 AND series.name = 'Ratio' "));
}

TEST_F(DeleteSeriesOf, a_failing_database_is_false) {
  script->answer(findSeries, seriesRow);
  script->fail("DELETE Series.* from series where id=11", refused);
  EXPECT_FALSE(DeleteSeries(context, "M1", "Ratio", -1));
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:series", "Syntax error")));
  EXPECT_EQ(log().back(), "close");
}

}  // namespace
}  // namespace pelmora::test
