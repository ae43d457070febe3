// SPDX-License-Identifier: MIT
#include "tests/support/curve_file.h"
#include "tests/support/plain_sqlite.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora {
namespace {

using test::CurveFile;
using test::failureOf;

constexpr std::array<std::string_view, 3> pointFields{"seriesID", "Roshko", "Strouhal"};

std::unique_ptr<Recordset> batch(const CurveFile& file, const std::string& statement) {
  return file.connection->openRecordset(statement, CursorType::dynamic, LockType::batchOptimistic);
}

void addPoint(Recordset& rows, const Value& roshko, const Value& strouhal = 1.0) {
  const std::array<Value, 3> values{Value(std::int64_t{1}), roshko, strouhal};
  rows.addRow(pointFields, values);
}

TEST(sqlite_recordset, values_come_as_they_are_stored) {
  const CurveFile file;
  test::PlainSqlite(file.path).run(
      "CREATE TABLE mixed (a, b, c, d, e REAL, f TEXT); INSERT INTO mixed VALUES (7, 1.5, 'x', "
      "NULL, 'word', 'é')");
  const auto rows = file.select("Select * from mixed");
  EXPECT_EQ(rows->value("a"), Value(std::int64_t{7}));
  EXPECT_EQ(rows->value("B"), Value(1.5));
  EXPECT_EQ(rows->value("c"), Value("x"));
  EXPECT_EQ(rows->value("d"), Value());
  EXPECT_EQ(rows->value("e"), Value("word"));
  EXPECT_EQ(rows->value("f"), Value("é"));
}

TEST(sqlite_recordset, a_batch_is_stored_wholly_or_not_at_all) {
  const CurveFile file;
  test::PlainSqlite(file.path).run(
      "CREATE TABLE strict (n REAL CHECK (n < 10)); INSERT INTO strict VALUES (1)");
  const auto rows = batch(file, "Select * from strict");
  constexpr std::array<std::string_view, 1> fields{"n"};
  for (const double n : {2.0, 3.0, 11.0, 4.0}) rows->addRow(fields, std::array{Value(n)});
  EXPECT_NE(failureOf([&] { rows->updateBatch(); }).number, 0);
  EXPECT_EQ(file.count("strict"), 1);
  file.execute("Insert into Fluids (Name) VALUES ('still usable')");
}

TEST(sqlite_recordset, rows_of_many_columns_are_stored) {
  const CurveFile file;
  std::string columns;
  std::vector<std::string> names;
  for (int i = 0; i < 500; ++i) {
    names.push_back("c" + std::to_string(i));
    columns += (i == 0 ? "" : ", ") + names.back() + " INTEGER";
  }
  test::PlainSqlite(file.path).run("CREATE TABLE wide (" + columns + ")");
  const auto rows = batch(file, "Select * from wide");
  const std::vector<std::string_view> fields(names.begin(), names.end());
  for (std::int64_t row = 0; row < 21; ++row) {
    std::vector<Value> values;
    for (std::int64_t i = 0; i < 500; ++i) values.emplace_back(1000 * row + i);
    rows->addRow(fields, values);
  }
  rows->updateBatch();
  rows->requery();
  ASSERT_EQ(rows->recordCount(), 21);
  for (int i = 0; i < 20; ++i) rows->moveNext();
  EXPECT_EQ(rows->value("c499"), Value(std::int64_t{20499}));
}

TEST(sqlite_recordset, a_row_that_breaks_a_rule_undoes_its_batch_wherever_it_stands) {
  const CurveFile file;
  test::PlainSqlite(file.path).run("CREATE UNIQUE INDEX once ON raw1 (Roshko)");
  for (const int bad : {0, 7, 16, 30, 36}) {
    const auto rows = batch(file, "Select * from raw1");
    for (int i = 0; i < 37; ++i) addPoint(*rows, i == bad ? 1000.0 : 10.0 + i);
    addPoint(*rows, 1000.0);
    EXPECT_NE(failureOf([&] { rows->updateBatch(); }).number, 0);
    EXPECT_EQ(file.count("raw1"), 0);
  }
}

TEST(sqlite_recordset, long_texts_with_any_contents_come_back) {
  const CurveFile file;
  std::string text = "Zeile 1\r\n\tµ 'quoted' \"twice\" ; -- ";
  text += '\0';
  for (int i = 0; i < 13; ++i) text += text;
  const auto rows = file.select("Select * from DataFitResults where seriesID = 3");
  constexpr std::array<std::string_view, 2> fields{"seriesID", "summary"};
  rows->addRow(fields, std::array{Value(std::int64_t{3}), Value(text)});
  EXPECT_EQ(file.select("Select summary from datafitresults where seriesID = 3")->value("Summary"),
            Value(text));
}

TEST(sqlite_recordset, a_table_made_by_another_program_is_seen) {
  const CurveFile file;
  EXPECT_NE(failureOf([&] { (void)file.count("later"); }).number, 0);
  test::PlainSqlite(file.path).run("CREATE TABLE later (a)");
  EXPECT_EQ(file.count("later"), 0);
}

}  // namespace
}  // namespace pelmora
