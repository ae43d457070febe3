// SPDX-License-Identifier: MIT
#include "tests/support/curve_file.h"
#include "tests/support/plain_sqlite.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
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

TEST(sqlite_recordset, a_batch_is_stored_in_one_go) {
  const CurveFile file;
  const auto rows = batch(file, "Select * from raw1 where seriesID=1");
  addPoint(*rows, 1.5);
  addPoint(*rows, std::int64_t{2});
  EXPECT_EQ(file.count("raw1"), 0);
  rows->updateBatch();
  EXPECT_EQ(file.count("raw1"), 2);
  rows->updateBatch();
  EXPECT_EQ(file.count("raw1"), 2);
  rows->requery();
  ASSERT_EQ(rows->recordCount(), 2);
  EXPECT_EQ(rows->value("Roshko"), Value(1.5));
  rows->moveNext();
  EXPECT_EQ(rows->value("Roshko"), Value(2.0));
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

TEST(sqlite_recordset, batches_of_any_length_keep_their_rows_in_order) {
  const CurveFile file;
  test::PlainSqlite(file.path).run(
      "CREATE TABLE notes (ID INTEGER PRIMARY KEY, n REAL, words TEXT, loose)");
  constexpr std::array<std::string_view, 3> fields{"n", "words", "loose"};
  std::int64_t stored = 0;
  for (const std::int64_t length : {1, 2, 3, 4, 5, 15, 16, 17, 20, 23, 32, 39, 100}) {
    const auto rows = batch(file, "Select * from notes");
    for (std::int64_t i = 0; i < length; ++i) {
      const std::int64_t n = stored + i;
      const std::string words =
          "row " + std::to_string(n) + std::string(static_cast<std::size_t>(n), '.');
      const Value loose = n % 3 == 0 ? Value() : n % 3 == 1 ? Value(n) : Value(words);
      rows->addRow(fields, std::array<Value, 3>{n, n % 5 == 0 ? Value() : Value(words), loose});
    }
    rows->updateBatch();
    stored += length;
    ASSERT_EQ(file.count("notes"), stored);
  }
  const auto rows = file.select("Select * from notes ORDER BY ID");
  for (std::int64_t n = 0; n < stored; ++n, rows->moveNext()) {
    const std::string words =
        "row " + std::to_string(n) + std::string(static_cast<std::size_t>(n), '.');
    ASSERT_EQ(rows->value("ID"), Value(n + 1));
    ASSERT_EQ(rows->value("n"), Value(static_cast<double>(n)));
    ASSERT_EQ(rows->value("words"), n % 5 == 0 ? Value() : Value(words));
    ASSERT_EQ(rows->value("loose"), n % 3 == 0 ? Value() : n % 3 == 1 ? Value(n) : Value(words));
  }
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

TEST(sqlite_recordset, values_that_no_column_can_hold_are_refused_at_once) {
  const CurveFile file;
  const auto rows = batch(file, "Select * from raw1 where seriesID=1");
  addPoint(*rows, 1.0);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(failureOf([&] { addPoint(*rows, nan); }).number, 13);
  EXPECT_EQ(failureOf([&] { addPoint(*rows, 1.0, infinity); }).number, 6);
  EXPECT_EQ(failureOf([&] { addPoint(*rows, -infinity); }).number, 6);
  EXPECT_EQ(failureOf([&] { addPoint(*rows, "word"); }).number, 13);
  EXPECT_NE(failureOf([&] { addPoint(*rows, nan); }).description.find("'Roshko'"),
            std::string::npos);
  rows->updateBatch();
  EXPECT_EQ(file.count("raw1"), 1);
}

TEST(sqlite_recordset, extreme_numbers_come_back_bit_by_bit) {
  const CurveFile file;
  const auto rows = batch(file, "Select * from raw1 where seriesID=1");
  const std::array numbers{0.1, 5e-324, 1.7976931348623157e308, 1.0 / 3, 123456789.123456789};
  for (const double number : numbers) addPoint(*rows, number);
  rows->updateBatch();
  const auto read = file.select("Select roshko from raw1 where seriesID=1");
  for (const double number : numbers) {
    EXPECT_EQ(read->value(0), Value(number)) << number;
    read->moveNext();
  }
}

// A column of real numbers keeps whole ones as integers.
TEST(sqlite_recordset, minus_zero_comes_back_as_zero) {
  const CurveFile file;
  const auto rows = batch(file, "Select * from raw1 where seriesID=1");
  addPoint(*rows, -0.0);
  rows->updateBatch();
  const Value read = file.select("Select roshko from raw1 where seriesID=1")->value(0);
  EXPECT_EQ(read, Value(0.0));
  EXPECT_FALSE(std::signbit(std::get<double>(read)));
}

TEST(sqlite_recordset, an_added_row_is_current_with_its_key) {
  const CurveFile file;
  file.execute("Insert into series (name,meterid) VALUES('a',5)");
  const auto rows = file.select("select * from series where name = 'b' and meterid=5");
  ASSERT_EQ(rows->recordCount(), 0);
  constexpr std::array<std::string_view, 2> fields{"NAME", "meterid"};
  rows->addRow(fields, std::array{Value("b"), Value(5.0)});
  EXPECT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(rows->value("id"), Value(std::int64_t{2}));
  EXPECT_EQ(rows->value("name"), Value("b"));
  EXPECT_EQ(rows->value("meterid"), Value(std::int64_t{5}));
  EXPECT_EQ(file.count("series"), 2);
}

TEST(sqlite_recordset, an_added_row_follows_those_that_were_read) {
  const CurveFile file;
  file.execute("Insert into meter (SerialNumber,ReCalID) VALUES('a',0)");
  const auto rows = file.select(
      "select id, serialnumber, serialNumberAdjusted, recalid from meter where serialnumber = 'a'");
  constexpr std::array<std::string_view, 3> fields{"serialnumber", "serialnumberadjusted",
                                                   "ReCalID"};
  rows->addRow(fields, std::array{Value("a"), Value("x"), Value(std::int64_t{1})});
  EXPECT_EQ(rows->value("id"), Value(std::int64_t{2}));
  EXPECT_EQ(rows->recordCount(), 2);
  rows->moveNext();
  EXPECT_TRUE(rows->atEnd());
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

TEST(sqlite_recordset, only_rows_of_one_table_can_be_added_to) {
  const CurveFile file;
  constexpr std::array<std::string_view, 1> fields{"name"};
  for (const char* statement :
       {"Select series.name from series left join meter on meter.id=series.meterid",
        "Select distinct name from series", "Select name, count(*) as n from series group by name",
        "Select 'a' as name"}) {
    const auto rows = file.select(statement);
    const auto failure = failureOf([&] { rows->addRow(fields, std::array{Value("a")}); });
    EXPECT_EQ(failure.number, 3251) << statement;
    EXPECT_EQ(failure.description.find("Current Recordset does not support updating"), 0U);
  }
  EXPECT_EQ(file.count("series"), 0);
}

TEST(sqlite_recordset, fields_must_be_there) {
  const CurveFile file;
  const auto rows = file.select("Select name from series");
  constexpr std::array<std::string_view, 1> fields{"meterid"};
  EXPECT_EQ(failureOf([&] { rows->addRow(fields, std::array{Value(1.0)}); }).number, 3265);
  EXPECT_EQ(failureOf([&] { (void)rows->value("nme"); }).number, 3265);
  EXPECT_EQ(failureOf([&] { (void)rows->value(1); }).number, 3265);
}

TEST(sqlite_recordset, behind_the_last_row_there_is_none) {
  const CurveFile file;
  const auto rows = file.select("Select name from series");
  EXPECT_TRUE(rows->atEnd());
  EXPECT_EQ(failureOf([&] { (void)rows->value(0); }).number, 3021);
  EXPECT_EQ(failureOf([&] { rows->moveNext(); }).number, 3021);
}

TEST(sqlite_recordset, kept_rows_are_not_lost_by_a_requery) {
  const CurveFile file;
  const auto rows = batch(file, "Select * from raw1 where seriesID=1");
  addPoint(*rows, 1.0);
  EXPECT_EQ(failureOf([&] { rows->requery(); }).number, 3219);
  rows->updateBatch();
  rows->requery();
  EXPECT_EQ(rows->recordCount(), 1);
}

TEST(sqlite_recordset, a_refused_row_is_not_kept) {
  const CurveFile file;
  const auto rows = batch(file, "Select * from raw1 where seriesID=1");
  EXPECT_EQ(failureOf([&] { addPoint(*rows, "word"); }).number, 13);
  EXPECT_NO_THROW(rows->requery());
  EXPECT_NO_THROW(rows->updateBatch());
  EXPECT_EQ(file.count("raw1"), 0);
}

TEST(sqlite_recordset, rows_may_fill_different_fields) {
  const CurveFile file;
  const auto rows = batch(file, "Select * from raw1 where seriesID=1");
  addPoint(*rows, 1.0);
  constexpr std::array<std::string_view, 2> fields{"Strouhal", "seriesID"};
  rows->addRow(fields, std::array{Value(7.0), Value(1.0)});
  rows->updateBatch();
  rows->requery();
  ASSERT_EQ(rows->recordCount(), 2);
  rows->moveNext();
  EXPECT_EQ(rows->value("Roshko"), Value());
  EXPECT_EQ(rows->value("Strouhal"), Value(7.0));
}

TEST(sqlite_recordset, closing_lets_kept_rows_go) {
  const CurveFile file;
  const auto rows = batch(file, "Select * from raw1 where seriesID=1");
  addPoint(*rows, 1.0);
  rows->close();
  rows->close();
  EXPECT_EQ(failureOf([&] { rows->updateBatch(); }).number, 3704);
  EXPECT_EQ(file.count("raw1"), 0);
}

TEST(sqlite_recordset, requery_sees_what_was_stored_since) {
  const CurveFile file;
  const auto rows = file.select("Select * from fluids where name = 'Oil'");
  EXPECT_TRUE(rows->atEnd());
  file.execute("Insert into Fluids (Name) VALUES ('Oil')");
  rows->requery();
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(rows->value("ID"), Value(std::int64_t{1}));
}

TEST(sqlite_recordset, only_a_select_delivers_rows) {
  const CurveFile file;
  file.execute("Insert into Fluids (Name) VALUES ('Oil')");
  EXPECT_NE(failureOf([&] { (void)file.select("Delete from Fluids"); }).number, 0);
  EXPECT_EQ(file.count("Fluids"), 1);
}

TEST(sqlite_recordset, a_table_made_by_another_program_is_seen) {
  const CurveFile file;
  EXPECT_NE(failureOf([&] { (void)file.count("later"); }).number, 0);
  test::PlainSqlite(file.path).run("CREATE TABLE later (a)");
  EXPECT_EQ(file.count("later"), 0);
}

}  // namespace
}  // namespace pelmora
