// Rows come in the order of the schema, however the engine finds them.
// SPDX-License-Identifier: MIT
#include "tests/support/curve_file.h"
#include "tests/support/plain_sqlite.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pelmora {
namespace {

using test::CurveFile;
using test::PlainSqlite;
using Numbers = std::vector<double>;
using Texts = std::vector<std::string>;

Numbers numbersOf(const CurveFile& file, const std::string& statement) {
  Numbers numbers;
  for (const auto rows = file.select(statement); !rows->atEnd(); rows->moveNext()) {
    const Value& value = rows->value(0);
    const auto* whole = std::get_if<std::int64_t>(&value);
    numbers.push_back(whole != nullptr ? static_cast<double>(*whole) : std::get<double>(value));
  }
  return numbers;
}

Texts textsOf(const CurveFile& file, const std::string& statement) {
  Texts texts;
  for (const auto rows = file.select(statement); !rows->atEnd(); rows->moveNext())
    texts.push_back(std::get<std::string>(rows->value(0)));
  return texts;
}

// An index that holds every column: the engine would rather read it than the table.
constexpr const char* coveringIndex =
    "DROP INDEX raw1_series; CREATE INDEX cover ON raw1 (seriesID, Roshko, Strouhal);";
constexpr const char* threePoints =
    "INSERT INTO raw1 VALUES (1, 300, 0.3), (1, 100, 0.1), (2, 50, 9), (1, 200, 0.2);";

TEST(reading_order, points_come_as_they_were_stored_where_an_index_would_sort_them) {
  const CurveFile file;
  PlainSqlite(file.path).run(std::string(coveringIndex) + threePoints);
  EXPECT_EQ(numbersOf(file, "Select roshko, strouhal from raw1 where seriesID = 1"),
            (Numbers{300, 100, 200}));
  EXPECT_EQ(numbersOf(file, "Select Roshko from raw1"), (Numbers{300, 100, 50, 200}));
}

TEST(reading_order, points_that_a_sort_leaves_equal_come_as_they_were_stored) {
  const CurveFile file;
  PlainSqlite(file.path).run(std::string(coveringIndex) +
                             "INSERT INTO raw1 VALUES (1, 7, 3), (1, 5, 9), (1, 7, 1), (1, 7, 2)");
  EXPECT_EQ(
      numbersOf(file, "Select Strouhal, Roshko from raw1 where seriesID = 1 ORDER BY Roshko ASC"),
      (Numbers{9, 3, 1, 2}));
}

TEST(reading_order, points_without_row_ids_come_in_the_order_of_their_key) {
  const CurveFile file;
  PlainSqlite(file.path).run(
      "DROP TABLE raw1; CREATE TABLE raw1 (place INTEGER PRIMARY KEY, seriesID INTEGER, Roshko "
      "REAL, Strouhal REAL) WITHOUT ROWID;"
      "CREATE INDEX cover ON raw1 (seriesID, Roshko, Strouhal);"
      "INSERT INTO raw1 VALUES (3, 1, 20, 0), (2, 1, 10, 0), (1, 1, 30, 0)");
  EXPECT_EQ(numbersOf(file, "Select roshko from raw1 where seriesID = 1"), (Numbers{30, 10, 20}));
}

TEST(reading_order, columns_named_like_the_row_id_do_not_hide_it) {
  const CurveFile file;
  PlainSqlite(file.path).run(
      "DROP TABLE raw1; CREATE TABLE raw1 (_rowid_ INTEGER, rowid INTEGER, seriesID INTEGER, "
      "Roshko REAL, Strouhal REAL);"
      "CREATE INDEX cover ON raw1 (seriesID, Roshko, Strouhal);"
      "INSERT INTO raw1 VALUES (1, 3, 1, 20, 0), (2, 2, 1, 10, 0), (3, 1, 1, 30, 0)");
  EXPECT_EQ(numbersOf(file, "Select roshko from raw1 where seriesID = 1"), (Numbers{20, 10, 30}));
}

// As another program made them: ids that are no key, stored in falling order.
TEST(reading_order, series_and_set_ups_come_in_the_order_of_their_ids) {
  const CurveFile file;
  PlainSqlite(file.path).run(
      "DROP TABLE series; CREATE TABLE series (ID INT, name TEXT, meterid INT);"
      "INSERT INTO series VALUES (3, 'a', 1), (2, 'a', 1), (1, 'b', 1);"
      "INSERT INTO Fluids VALUES (1, 'Water');"
      "INSERT INTO CalSetup (ID, MeterID, Stand, FluidID) VALUES (8, 1, 1, 1), (4, 1, 2, 1)");
  EXPECT_EQ(numbersOf(file, "select * from series where name = 'a' and meterid=1"),
            (Numbers{2, 3}));
  EXPECT_EQ(
      numbersOf(file,
                "SELECT CalSetup.* FROM Fluids RIGHT JOIN CalSetup ON Fluids.ID = "
                "CalSetup.FluidID WHERE (((Fluids.Name)='Water') AND ((CalSetup.MeterID)=1));"),
      (Numbers{4, 8}));
}

TEST(reading_order, the_latest_calibration_is_the_first_of_those_that_are_there_twice) {
  const CurveFile file;
  PlainSqlite(file.path).run(
      "INSERT INTO meter (SerialNumber, ReCalID) VALUES ('M1', 0), ('M1', 1), ('M1', 1)");
  EXPECT_EQ(
      numbersOf(file, "SELECT TOP 1 ID from meter where serialnumber='M1' ORDER BY ReCalID DESC"),
      (Numbers{2}));
}

TEST(reading_order, distinct_rows_are_sorted) {
  const CurveFile file;
  PlainSqlite(file.path).run(
      "DROP INDEX meter_serial_number; INSERT INTO meter (SerialNumber, ReCalID) VALUES ('c', 0), "
      "('B', 0), ('a', 0), ('b', 1)");
  const Texts names = textsOf(file, "Select distinct serialnumber from meter");
  ASSERT_EQ(names.size(), 3U);
  EXPECT_EQ(names[0], "a");
  EXPECT_EQ(names[2], "c");
}

TEST(reading_order, groups_are_sorted_by_what_makes_them) {
  const CurveFile file;
  PlainSqlite(file.path).run(threePoints);
  EXPECT_EQ(numbersOf(file, "Select seriesID, COUNT(*) AS n from raw1 GROUP BY seriesID"),
            (Numbers{1, 2}));
}

// Derived points follow those that they come from.
TEST(reading_order, rows_are_inserted_as_they_are_read) {
  const CurveFile file;
  PlainSqlite(file.path).run(
      "INSERT INTO CalDataPoint (CalSetupID, JobRecordID, V1) VALUES (1, 20, 5), (1, 10, 6), (1, "
      "20, 7)");
  file.execute(
      "INSERT INTO raw1 ( seriesID,   Roshko,   Strouhal ) SELECT 1 AS SeriesID, [V1] AS Roshko, "
      "[V1] AS Strouhal FROM CalDataPoint WHERE (((CalDataPoint.calSetupID)=1));");
  EXPECT_EQ(numbersOf(file, "Select Roshko from raw1 where seriesID=1"), (Numbers{5, 6, 7}));
}

TEST(reading_order, statements_without_rows_of_a_table_are_left_alone) {
  const CurveFile file;
  PlainSqlite(file.path).run(threePoints);
  EXPECT_EQ(numbersOf(file, "Select COUNT(*) AS n from raw1"), (Numbers{4}));
  EXPECT_EQ(numbersOf(file, "Select DISTINCT 5 AS n from raw1"), (Numbers{5}));
  EXPECT_EQ(numbersOf(file, "Select 5 AS n"), (Numbers{5}));
}

}  // namespace
}  // namespace pelmora
