// Record sets and what is added to them, on each engine.
// SPDX-License-Identifier: MIT
#include "tests/contract/engines.h"

#include <pelmora/own_tables.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>

namespace pelmora {
namespace {

using test::failureOf;

constexpr std::array<std::string_view, 3> pointFields{"seriesID", "Roshko", "Strouhal"};

template <class Curves>
std::unique_ptr<Recordset> batch(const Curves& file, const std::string& statement) {
  return file.connection->openRecordset(statement, CursorType::dynamic, LockType::batchOptimistic);
}

void addPoint(Recordset& rows, const Value& roshko, const Value& strouhal = 1.0) {
  const std::array<Value, 3> values{Value(std::int64_t{1}), roshko, strouhal};
  rows.addRow(pointFields, values);
}

template <class Curves>
class recordsets : public test::CurveContract<Curves> {};
TYPED_TEST_SUITE(recordsets, test::Engines);

TYPED_TEST(recordsets, a_batch_is_stored_in_one_go) {
  const TypeParam file;
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

TYPED_TEST(recordsets, batches_of_any_length_keep_their_rows_in_order) {
  const TypeParam file;
  createTable(file.connection, {"notes",
                                {{"ID", OwnColumnType::key},
                                 {"n", OwnColumnType::real},
                                 {"words", OwnColumnType::text},
                                 {"loose", OwnColumnType::anything}}});
  constexpr std::array<std::string_view, 3> fields{"n", "words", "loose"};
  std::int64_t stored = 0;
  for (const std::int64_t length : {1, 2, 3, 4, 5, 15, 16, 17, 20, 23, 32, 39, 100, 101, 300}) {
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

TYPED_TEST(recordsets, values_that_no_column_can_hold_are_refused_at_once) {
  const TypeParam file;
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

TYPED_TEST(recordsets, extreme_numbers_come_back_bit_by_bit) {
  const TypeParam file;
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

// The embedded engine keeps whole numbers as integers in a column of real ones.
TYPED_TEST(recordsets, minus_zero_comes_back_as_zero) {
  const TypeParam file;
  const auto rows = batch(file, "Select * from raw1 where seriesID=1");
  addPoint(*rows, -0.0);
  rows->updateBatch();
  const Value read = file.select("Select roshko from raw1 where seriesID=1")->value(0);
  EXPECT_EQ(read, Value(0.0));
  EXPECT_FALSE(std::signbit(std::get<double>(read)));
}

TYPED_TEST(recordsets, an_added_row_is_current_with_its_key) {
  const TypeParam file;
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

TYPED_TEST(recordsets, an_added_row_follows_those_that_were_read) {
  const TypeParam file;
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

TYPED_TEST(recordsets, only_rows_of_one_table_can_be_added_to) {
  const TypeParam file;
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

TYPED_TEST(recordsets, fields_must_be_there) {
  const TypeParam file;
  const auto rows = file.select("Select name from series");
  constexpr std::array<std::string_view, 1> fields{"meterid"};
  EXPECT_EQ(failureOf([&] { rows->addRow(fields, std::array{Value(1.0)}); }).number, 3265);
  EXPECT_EQ(failureOf([&] { (void)rows->value("nme"); }).number, 3265);
  EXPECT_EQ(failureOf([&] { (void)rows->value(1); }).number, 3265);
}

TYPED_TEST(recordsets, behind_the_last_row_there_is_none) {
  const TypeParam file;
  const auto rows = file.select("Select name from series");
  EXPECT_TRUE(rows->atEnd());
  EXPECT_EQ(failureOf([&] { (void)rows->value(0); }).number, 3021);
  EXPECT_EQ(failureOf([&] { rows->moveNext(); }).number, 3021);
}

TYPED_TEST(recordsets, kept_rows_are_not_lost_by_a_requery) {
  const TypeParam file;
  const auto rows = batch(file, "Select * from raw1 where seriesID=1");
  addPoint(*rows, 1.0);
  EXPECT_EQ(failureOf([&] { rows->requery(); }).number, 3219);
  rows->updateBatch();
  rows->requery();
  EXPECT_EQ(rows->recordCount(), 1);
}

TYPED_TEST(recordsets, a_refused_row_is_not_kept) {
  const TypeParam file;
  const auto rows = batch(file, "Select * from raw1 where seriesID=1");
  EXPECT_EQ(failureOf([&] { addPoint(*rows, "word"); }).number, 13);
  EXPECT_NO_THROW(rows->requery());
  EXPECT_NO_THROW(rows->updateBatch());
  EXPECT_EQ(file.count("raw1"), 0);
}

TYPED_TEST(recordsets, rows_may_fill_different_fields) {
  const TypeParam file;
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

TYPED_TEST(recordsets, closing_lets_kept_rows_go) {
  const TypeParam file;
  const auto rows = batch(file, "Select * from raw1 where seriesID=1");
  addPoint(*rows, 1.0);
  rows->close();
  rows->close();
  EXPECT_EQ(failureOf([&] { rows->updateBatch(); }).number, 3704);
  EXPECT_EQ(file.count("raw1"), 0);
}

TYPED_TEST(recordsets, requery_sees_what_was_stored_since) {
  const TypeParam file;
  const auto rows = file.select("Select * from fluids where name = 'Oil'");
  EXPECT_TRUE(rows->atEnd());
  file.execute("Insert into Fluids (Name) VALUES ('Oil')");
  rows->requery();
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(rows->value("ID"), Value(std::int64_t{1}));
}

TYPED_TEST(recordsets, only_a_select_delivers_rows) {
  const TypeParam file;
  file.execute("Insert into Fluids (Name) VALUES ('Oil')");
  EXPECT_NE(failureOf([&] { (void)file.select("Delete from Fluids"); }).number, 0);
  EXPECT_EQ(file.count("Fluids"), 1);
}

TYPED_TEST(recordsets, long_texts_come_back) {
  const TypeParam file;
  std::string text = "Zeile 1\r\n\tµ 'quoted' \"twice\" \\ \\N \\. ; -- $f$ ";
  for (int i = 0; i < 13; ++i) text += text;
  const auto rows = file.select("Select * from DataFitResults where seriesID = 3");
  constexpr std::array<std::string_view, 2> fields{"seriesID", "summary"};
  rows->addRow(fields, std::array{Value(std::int64_t{3}), Value(text)});
  const auto many = batch(file, "Select * from DataFitResults where seriesID = 4");
  for (int i = 0; i < 150; ++i)
    many->addRow(fields, std::array{Value(std::int64_t{4}), Value(text.substr(0, 100))});
  many->updateBatch();
  EXPECT_EQ(file.select("Select summary from datafitresults where seriesID = 3")->value("Summary"),
            Value(text));
  const auto read = file.select("Select summary from datafitresults where seriesID = 4");
  ASSERT_EQ(read->recordCount(), 150);
  EXPECT_EQ(read->value(0), Value(text.substr(0, 100)));
}

TYPED_TEST(recordsets, an_added_row_of_a_host_keeps_its_key) {
  const TypeParam file;
  const auto rows = file.select("Select * from series");
  constexpr std::array<std::string_view, 2> fields{"ID", "name"};
  rows->addRow(fields, std::array{Value(std::int64_t{40}), Value("a")});
  EXPECT_EQ(rows->value("ID"), Value(std::int64_t{40}));
  constexpr std::array<std::string_view, 1> name{"name"};
  rows->addRow(name, std::array{Value("b")});
  EXPECT_EQ(rows->value("ID"), Value(std::int64_t{41}));
}

}  // namespace
}  // namespace pelmora
