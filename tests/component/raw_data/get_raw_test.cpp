// Statements, events and failures of GetRaw and getRSvalues.
// SPDX-License-Identifier: MIT
#include "component/raw_points.h"
#include "tests/support/operation_test.h"

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string findSeries =
    "SELECT TOP 1 series.ID AS seriesID,meter.ID, meter.ReCalID, meter.SerialNumberAdjusted from "
    "series left join meter on series.meterid=meter.id where serialnumber='M1' AND series.name = "
    "'Ratio' ORDER BY ReCalID DESC";
const std::string findMaster =
    "SELECT TOP 1 ID, ReCalID from masterMeterList where serialnumber='M1' ORDER BY ReCalID DESC";

std::string readRaw(const std::string& number) {
  return "Select roshko, strouhal from raw" + number + " where seriesID = 11";
}

class GetRawOf : public ScriptedOperationTest {
 protected:
  GetRawOf() {
    shared.fitRecord().SeriesName = "fitted last";
    for (const char* number : {"0", "1", "2", "3", "4", "5"}) {
      script->answer(readRaw(number), {{"Roshko", "Strouhal"}, {{10.5, 1200.0}, {9.5, 1300.0}}});
    }
  }
  void knowSeries() {
    script->answer(
        findSeries,
        {{"seriesID", "ID", "ReCalID", "SerialNumberAdjusted"},
         {{std::int64_t{11}, std::int64_t{7}, std::int64_t{3}, std::string("M1 adjusted")}}});
  }
  MeterInfo get(std::int16_t dataSet, const ConnectionPtr& conn) {
    return GetRaw(context, "Ratio", "M1", dataSet, conn, -1);
  }

  const PointArray points{{10.5, 1200}, {9.5, 1300}};
};

TEST_F(GetRawOf, data_set_n_reads_the_table_n_into_slot_n_minus_1) {
  knowSeries();
  const ConnectionPtr connection = openConnection();
  for (std::int16_t dataSet = 1; dataSet <= 4; ++dataSet) {
    const MeterInfo record = get(dataSet, connection);
    ASSERT_EQ(record.Series.size(), 1U);
    for (std::int16_t slot = 0; slot < 4; ++slot) {
      EXPECT_EQ(record.Series[0].Raw[static_cast<std::size_t>(slot)].Points,
                slot == dataSet - 1 ? points : PointArray())
          << dataSet;
    }
    EXPECT_EQ(log().back(), "read " + readRaw(std::to_string(dataSet)));
  }
}

TEST_F(GetRawOf, a_series_comes_back_in_the_record_of_its_meter) {
  knowSeries();
  const MeterInfo record = get(1, nullptr);
  EXPECT_EQ(record.Source, 1);
  EXPECT_EQ(record.MeterID, 7);
  EXPECT_EQ(record.ReCalID, 3);
  EXPECT_EQ(record.SerialNumberAdjusted, "M1 adjusted");
  EXPECT_EQ(record.Series.at(0).SeriesName, "Ratio");
  EXPECT_EQ(record.Series.at(0).SeriesID, 11);
}

TEST_F(GetRawOf, an_own_connection_is_closed) {
  knowSeries();
  (void)get(1, nullptr);
  EXPECT_THAT(log(), ElementsAre("open", "read " + findSeries, "read " + readRaw("1"), "close"));
}

TEST_F(GetRawOf, a_passed_connection_is_left_open) {
  knowSeries();
  const ConnectionPtr connection = openConnection();
  (void)get(1, connection);
  EXPECT_THAT(log(), ElementsAre("read " + findSeries, "read " + readRaw("1")));
  EXPECT_TRUE(connection->isOpen());
}

TEST_F(GetRawOf, a_series_tells_the_host_with_the_name_of_the_shared_record) {
  knowSeries();
  (void)get(1, nullptr);
  EXPECT_THAT(events, ElementsAre("Retrieving old raw data from database in series fitted last"));
}

TEST_F(GetRawOf, data_set_0_and_5_are_out_of_range_and_keep_the_record) {
  knowSeries();
  for (const std::int16_t dataSet : {std::int16_t{0}, std::int16_t{5}}) {
    boxes.clear();
    const MeterInfo record = get(dataSet, nullptr);
    EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:GetRaw", "Subscript out of range")));
    EXPECT_EQ(record.MeterID, 7);
    EXPECT_EQ(log().back(), "close");
  }
}

TEST_F(GetRawOf, an_unknown_meter_reads_nothing) {
  EXPECT_EQ(get(1, nullptr), (MeterInfo{-1, -1, 0, "", "", {}}));
  EXPECT_THAT(log(), ElementsAre("open", "read " + findSeries, "read " + findMaster, "close"));
  EXPECT_THAT(events, IsEmpty());
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(GetRawOf, no_location_at_all_has_source_minus_one) {
  shared.location = {};
  EXPECT_EQ(get(1, nullptr).Source, -1);
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:GetRaw", "Empty database location")));
}

TEST_F(GetRawOf, a_meter_of_the_master_list_has_no_series_entry_to_read) {
  script->answer(findMaster, {{"ID", "ReCalID"}, {{std::int64_t{40}, std::int64_t{2}}}});
  EXPECT_EQ(get(1, nullptr), (MeterInfo{2, 40, 2, "M1", "", {}}));
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:GetRaw", "Subscript out of range")));
  EXPECT_THAT(events, ElementsAre("Retrieving old raw data from database in series fitted last"));
}

TEST_F(GetRawOf, a_series_without_points_has_an_array_without_bounds) {
  knowSeries();
  script->answers[readRaw("2")] = {Rows{{"Roshko", "Strouhal"}, {}}};
  EXPECT_EQ(get(2, nullptr).Series.at(0).Raw[1].Points, PointArray());
}

TEST_F(GetRawOf, a_null_among_the_points_is_shown) {
  knowSeries();
  script->answers[readRaw("2")] = {Rows{{"Roshko", "Strouhal"}, {{1.0, Value()}}}};
  EXPECT_EQ(get(2, nullptr).Series.at(0).Raw[1].Points, PointArray());
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:GetRaw", "Invalid use of Null")));
}

class getRSvaluesOf : public ScriptedOperationTest {
 protected:
  const std::string statement = "Select roshko, strouhal from curve where seriesID = 11";
};

TEST_F(getRSvaluesOf, a_table_are_its_points_of_that_series) {
  script->answer(statement, {{"ROSHKO", "strouhal"}, {{2.0, 3.0}, {1.0, 4.0}}});
  EXPECT_EQ(getRSvalues(context, "curve", 11, nullptr), (PointArray{{2, 3}, {1, 4}}));
  EXPECT_THAT(log(), ElementsAre("open", "read " + statement, "close"));
}

TEST_F(getRSvaluesOf, a_table_pump_the_hosts_messages_once) {
  platform().pumpMessages = [this] { events.push_back("pump after " + log().back()); };
  (void)getRSvalues(context, "curve", 11, nullptr);
  EXPECT_THAT(events, ElementsAre("pump after open"));
  EXPECT_EQ(log().at(1), "read " + statement);
}

TEST_F(getRSvaluesOf, a_passed_connection_leave_it_open) {
  const ConnectionPtr connection = openConnection();
  EXPECT_EQ(getRSvalues(context, "curve", 11, connection), PointArray());
  EXPECT_TRUE(connection->isOpen());
  EXPECT_THAT(log(), ElementsAre("read " + statement));
}

TEST_F(getRSvaluesOf, a_failing_database_are_none_and_the_box_names_the_module) {
  script->fail(statement, refused);
  EXPECT_EQ(getRSvalues(context, "curve", 11, nullptr), PointArray());
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in misc:getRSvalues", "Syntax error")));
  EXPECT_EQ(log().back(), "close");
}

}  // namespace
}  // namespace pelmora::test
