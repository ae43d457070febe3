// SetRaw and GetRaw on a real curve database.
// SPDX-License-Identifier: MIT
#include "component/raw_points.h"
#include "tests/support/curve_database.h"

#include <limits>

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class raw_series : public CurveDatabaseTest {
 protected:
  raw_series() { addMeter(7, "M1", 0); }
  bool set(const PointArray& points, std::int16_t dataSet = 0, const std::string& name = "Ratio") {
    return SetRaw(context, name, "M1", points, dataSet, false, -1);
  }
  PointArray get(std::int16_t dataSet) {
    const MeterInfo record = GetRaw(context, "Ratio", "M1", dataSet, nullptr, -1);
    return record.Series.at(0).Raw.at(static_cast<std::size_t>(dataSet - 1)).Points;
  }
};

TEST_F(raw_series, written_to_data_set_0_is_read_from_data_set_1) {
  const PointArray points{{0.1, 1.0 / 3}, {-2.5E+300, 1.7976931348623157E+308}, {5E-324, 0}};
  EXPECT_TRUE(set(points));
  EXPECT_EQ(get(1), points);
  EXPECT_THAT(lines("select * from raw2"), IsEmpty());
}

TEST_F(raw_series, replaces_the_points_of_its_own_table_alone) {
  for (std::int16_t dataSet = 0; dataSet < 4; ++dataSet) {
    EXPECT_TRUE(set({{1.0 + dataSet, 1}}, dataSet));
  }
  EXPECT_TRUE(set({{50, 5}, {60, 6}}, 1));
  EXPECT_EQ(get(1), (PointArray{{1, 1}}));
  EXPECT_EQ(get(2), (PointArray{{50, 5}, {60, 6}}));
  EXPECT_EQ(get(3), (PointArray{{3, 1}}));
  EXPECT_EQ(get(4), (PointArray{{4, 1}}));
}

TEST_F(raw_series, replaces_the_points_of_its_own_series_alone) {
  EXPECT_TRUE(set({{1, 1}}));
  EXPECT_TRUE(set({{2, 2}}, 0, "Rotor A"));
  EXPECT_TRUE(set({{3, 3}}));
  EXPECT_THAT(lines("select roshko from raw1 order by roshko"), ElementsAre("2", "3"));
}

TEST_F(raw_series, of_a_known_name_in_another_case_is_the_same_series) {
  EXPECT_TRUE(set({{1, 1}}));
  EXPECT_TRUE(set({{2, 2}}, 0, "RATIO"));
  EXPECT_THAT(lines("select name from series"), ElementsAre("Ratio"));
  EXPECT_EQ(get(1), (PointArray{{2, 2}}));
}

TEST_F(raw_series, takes_no_points_at_all) {
  EXPECT_TRUE(set({{1, 1}}));
  EXPECT_TRUE(set(PointArray()));
  EXPECT_EQ(get(1), PointArray());
}

TEST_F(raw_series, cleared_keeps_its_row) {
  EXPECT_FALSE(SetRaw(context, "Ratio", "M1", {{1, 1}}, 0, true, -1));
  EXPECT_THAT(lines("select name, meterid from series"), ElementsAre("Ratio|7"));
  EXPECT_THAT(lines("select * from raw1"), IsEmpty());
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(raw_series, takes_as_many_points_as_16_bits_count) {
  PointArray points(32767);
  for (std::size_t i = 0; i < points.size(); ++i) {
    points(i, 0) = 0.5 * static_cast<double>(i);
    points(i, 1) = 1 / (1.0 + static_cast<double>(i));
  }
  EXPECT_TRUE(set(points));
  EXPECT_EQ(get(1), points);
}

TEST_F(raw_series, of_one_point_more_is_an_overflow_and_leaves_nothing) {
  EXPECT_TRUE(set({{1, 1}}));
  EXPECT_FALSE(set(PointArray(32768)));
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:SetRaw", "Overflow")));
  EXPECT_THAT(lines("select * from raw1"), IsEmpty());
}

TEST_F(raw_series, of_more_rows_than_16_bits_count_cannot_be_read) {
  EXPECT_TRUE(set(PointArray(32767)));
  run("INSERT INTO raw1 (seriesID, Roshko, Strouhal) SELECT TOP 1 seriesID, Roshko, Strouhal FROM "
      "raw1");
  EXPECT_EQ(get(1), PointArray());
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:GetRaw", "Overflow")));
}

TEST_F(raw_series, stores_no_value_that_is_not_a_number) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(set({{1, 1}, {nan, 2}}));
  EXPECT_THAT(boxes, ElementsAre(errorBoxOf("Error in RawData:SetRaw")));
  EXPECT_THAT(lines("select * from raw1"), IsEmpty());
}

TEST_F(raw_series, stores_no_infinite_value) {
  EXPECT_FALSE(set({{1, 1}, {2, std::numeric_limits<double>::infinity()}}));
  EXPECT_THAT(boxes, ElementsAre(errorBoxOf("Error in RawData:SetRaw")));
  EXPECT_THAT(lines("select * from raw1"), IsEmpty());
}

TEST_F(raw_series, with_one_column_loses_its_old_points) {
  EXPECT_TRUE(set({{1, 1}}));
  EXPECT_FALSE(set(PointArray(2, 1)));
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:SetRaw", "Subscript out of range")));
  EXPECT_THAT(lines("select * from raw1"), IsEmpty());
}

TEST_F(raw_series, with_points_but_no_column_loses_its_old_points) {
  EXPECT_TRUE(set({{1, 1}}));
  EXPECT_FALSE(set(PointArray(5, 0)));
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:SetRaw", "Subscript out of range")));
  EXPECT_THAT(lines("select * from raw1"), IsEmpty());
}

TEST_F(raw_series, without_a_table_of_that_number_ends_in_the_box) {
  EXPECT_FALSE(set({{1, 1}}, 4));
  EXPECT_FALSE(set({{1, 1}}, -1));
  EXPECT_THAT(boxes, SizeIs(2));
  EXPECT_THAT(boxes, testing::Each(errorBoxOf("Error in RawData:SetRaw")));
  boxes.clear();
  (void)GetRaw(context, "Ratio", "M1", 0, nullptr, -1);
  (void)GetRaw(context, "Ratio", "M1", 5, nullptr, -1);
  EXPECT_THAT(boxes, SizeIs(2));
  EXPECT_THAT(boxes, testing::Each(errorBoxOf("Error in RawData:GetRaw")));
}

TEST_F(raw_series, with_a_quote_in_its_name_ends_in_the_box) {
  EXPECT_FALSE(set({{1, 1}}, 0, "Rotor 'A'"));
  EXPECT_THAT(boxes, ElementsAre(errorBoxOf("Error in RawData:SetRaw")));
  EXPECT_THAT(lines("select * from series"), IsEmpty());
}

TEST_F(raw_series, belongs_to_the_calibration_that_was_asked_for) {
  addMeter(8, "M1", 1);
  EXPECT_TRUE(SetRaw(context, "Ratio", "M1", {{1, 1}}, 0, false, 0));
  EXPECT_TRUE(set({{2, 2}}));
  EXPECT_THAT(lines("select meterid from series order by meterid"), ElementsAre("7", "8"));
  EXPECT_EQ(GetRaw(context, "Ratio", "M1", 1, nullptr, 0).Series.at(0).Raw[0].Points,
            (PointArray{{1, 1}}));
}

TEST_F(raw_series, leaves_the_file_free_for_others) {
  EXPECT_TRUE(set({{1, 1}}));
  run("DELETE from raw1 where seriesID = 1");
  EXPECT_EQ(log().back(), "close");
}

}  // namespace
}  // namespace pelmora::test
