// Statements, events and failures of SetRaw.
// SPDX-License-Identifier: MIT
#include "component/raw_points.h"
#include "tests/support/operation_test.h"

#include <algorithm>

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string findMeter =
    "SELECT TOP 1 ID, ReCalID, SerialNumberAdjusted from meter where serialnumber='M1' ORDER BY "
    "ReCalID DESC";
const std::string findMaster =
    "SELECT TOP 1 ID, ReCalID from masterMeterList where serialnumber='M1' ORDER BY ReCalID DESC";
const std::string findSeries = "select * from series where name = 'Ratio' and meterid=7";

class SetRawOf : public ScriptedOperationTest {
 protected:
  SetRawOf() {
    script->answer(findMeter, {{"ID", "ReCalID", "SerialNumberAdjusted"},
                               {{std::int64_t{7}, std::int64_t{0}, Value()}}});
    script->generatedId = 20;
    shared.fitRecord().SeriesName = "fitted last";
  }
  void knowSeries() {
    script->answer(findSeries, {{"ID", "name", "meterid"},
                                {{std::int64_t{11}, std::string("Ratio"), std::int64_t{7}}}});
  }
  bool set(std::int16_t dataSet = 0, bool cleardb = false) {
    return SetRaw(context, "Ratio", "M1", points, dataSet, cleardb, -1);
  }

  PointArray points{{10.5, 1200}, {1E-05, 0.25}};
};

TEST_F(SetRawOf, a_known_series_replaces_its_points) {
  knowSeries();
  EXPECT_TRUE(set());
  EXPECT_THAT(log(),
              ElementsAre("open", "read " + findMeter, "read " + findSeries,
                          "execute DELETE from raw1 where seriesID = 11",
                          "batch Select * from raw1 where seriesID=11",
                          "add seriesID=11 Roshko=10.5 Strouhal=1200",
                          "add seriesID=11 Roshko=1E-05 Strouhal=0.25", "update batch", "close"));
}

TEST_F(SetRawOf, an_unknown_series_adds_its_row) {
  points = {};
  EXPECT_TRUE(set());
  EXPECT_THAT(
      log(), ElementsAre("open", "read " + findMeter, "read " + findSeries,
                         "add name=Ratio meterid=7", "execute DELETE from raw1 where seriesID = 21",
                         "batch Select * from raw1 where seriesID=21", "update batch", "close"));
}

TEST_F(SetRawOf, data_set_n_writes_the_table_n_plus_1) {
  knowSeries();
  (void)set(3);
  EXPECT_THAT(log(), testing::Contains("execute DELETE from raw4 where seriesID = 11"));
  EXPECT_THAT(log(), testing::Contains("batch Select * from raw4 where seriesID=11"));
}

TEST_F(SetRawOf, negative_data_sets_name_tables_all_the_same) {
  knowSeries();
  (void)set(-1);
  EXPECT_THAT(log(), testing::Contains("execute DELETE from raw0 where seriesID = 11"));
}

TEST_F(SetRawOf, data_set_32767_is_an_overflow_before_anything_is_opened) {
  EXPECT_FALSE(set(32767));
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:SetRaw", "Overflow")));
  EXPECT_THAT(log(), IsEmpty());
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(SetRawOf, cleardb_deletes_and_writes_nothing) {
  EXPECT_FALSE(set(1, true));
  EXPECT_THAT(log(), ElementsAre("open", "read " + findMeter, "read " + findSeries,
                                 "add name=Ratio meterid=7",
                                 "execute DELETE from raw2 where seriesID = 21", "close"));
  EXPECT_THAT(boxes, IsEmpty());
  EXPECT_THAT(events, ElementsAre("Querying series name in series Ratio",
                                  "Removing old raw data in series fitted last"));
}

TEST_F(SetRawOf, a_series_tells_the_host_with_the_name_of_the_shared_record) {
  (void)set();
  EXPECT_THAT(events, ElementsAre("Querying series name in series Ratio",
                                  "Removing old raw data in series fitted last",
                                  "Inserting new raw data in series fitted last"));
}

TEST_F(SetRawOf, a_numbered_calibration_is_looked_up_by_its_number) {
  (void)SetRaw(context, "Ratio", "M1", points, 0, false, 4);
  EXPECT_EQ(log().at(1),
            "read SELECT ID, ReCalID, SerialNumberAdjusted from meter where serialnumber='M1' AND "
            "recalid=4 ORDER BY ReCalID DESC");
}

TEST_F(SetRawOf, an_unknown_meter_goes_under_meter_minus_one) {
  script->answers.clear();
  EXPECT_TRUE(set());
  EXPECT_THAT(log(),
              testing::Contains("read select * from series where name = 'Ratio' and meterid=-1"));
}

TEST_F(SetRawOf, a_meter_whose_look_up_fails_goes_under_no_meter_behind_its_box) {
  script->fail(findMeter, refused);
  EXPECT_TRUE(set());
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:findMeterInfo", "Syntax error")));
  EXPECT_THAT(log(),
              testing::Contains("read select * from series where name = 'Ratio' and meterid=0"));
}

TEST_F(SetRawOf, a_meter_of_the_master_list_goes_under_that_lists_id) {
  script->answers.clear();
  script->answer(findMaster, {{"ID", "ReCalID"}, {{std::int64_t{40}, std::int64_t{2}}}});
  EXPECT_TRUE(set());
  EXPECT_THAT(log(), testing::Contains("add name=Ratio meterid=40"));
}

TEST_F(SetRawOf, one_column_fails_after_the_old_points_are_gone) {
  points = PointArray(3, 1);
  EXPECT_FALSE(set());
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:SetRaw", "Subscript out of range")));
  EXPECT_THAT(log(), testing::Contains("execute DELETE from raw1 where seriesID = 21"));
  EXPECT_THAT(log(), testing::Not(testing::Contains("update batch")));
  EXPECT_EQ(log().back(), "close");
}

TEST_F(SetRawOf, one_point_too_many_is_an_overflow_and_sends_nothing) {
  points = PointArray(32768);
  EXPECT_FALSE(set());
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:SetRaw", "Overflow")));
  EXPECT_THAT(log(), testing::Contains("execute DELETE from raw1 where seriesID = 21"));
  EXPECT_THAT(log(), testing::Not(testing::Contains("update batch")));
}

TEST_F(SetRawOf, a_batch_that_fails_is_false_and_closes_the_connection) {
  knowSeries();
  script->fail("update batch", refused);
  EXPECT_FALSE(set());
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:SetRaw", "Syntax error")));
  // What was deleted stays deleted: nothing takes it back.
  EXPECT_EQ(log().at(3), "execute DELETE from raw1 where seriesID = 11");
  EXPECT_EQ(std::ranges::count_if(
                log(), [](const std::string& step) { return step.starts_with("execute "); }),
            1);
  EXPECT_EQ(log().back(), "close");
}

TEST_F(SetRawOf, no_location_at_all_is_shown) {
  shared.location = {};
  EXPECT_FALSE(set());
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:SetRaw", "Empty database location")));
}

TEST_F(SetRawOf, a_handler_that_throws_ends_the_call_in_the_box) {
  const OperationContext throwing(shared, platform(), [](const std::string& message) {
    if (message.starts_with("Removing")) throw std::runtime_error("host trouble");
  });
  EXPECT_FALSE(SetRaw(throwing, "Ratio", "M1", points, 0, false, -1));
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:SetRaw", "host trouble")));
  EXPECT_EQ(log().back(), "close");
}

}  // namespace
}  // namespace pelmora::test
