// Statements that come again and again: each run is as if it were the first.
// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_error.h"
#include "base/run_time_error.h"
#include "tests/support/curve_file.h"
#include "tests/support/plain_sqlite.h"

#include <pelmora/own_tables.h>

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <string_view>

namespace pelmora {
namespace {

using test::CurveFile;
using test::failureOf;
using test::PlainSqlite;

class repeated_statements : public testing::Test {
 protected:
  // Series 1 to 3 have one point each, with ten times their number as Roshko.
  repeated_statements() {
    for (const char* id : {"1", "2", "3"}) {
      curves.execute(std::string("Insert into series (ID, name, meterid) VALUES (") + id + ", 'S" +
                     id + "', 7)");
      curves.execute(std::string("Insert into raw1 (seriesID, Roshko) VALUES (") + id + ", " + id +
                     "0)");
    }
  }
  // The values of the first row, joined by blanks.
  [[nodiscard]] std::string firstRow(const std::string& statement) const {
    const auto rows = curves.select(statement);
    if (rows->atEnd()) return "none";
    std::string row;
    for (std::size_t i = 0; i < rows->fieldCount(); ++i)
      row += (i == 0 ? "" : " ") + text(rows->value(i));
    return row;
  }
  static std::string text(const Value& value) {
    if (const auto* whole = std::get_if<std::int64_t>(&value)) return std::to_string(*whole);
    if (const auto* real = std::get_if<double>(&value))
      return std::to_string(static_cast<int>(*real));
    const auto* words = std::get_if<std::string>(&value);
    return words == nullptr ? "null" : "'" + *words + "'";
  }

  CurveFile curves;
};

TEST_F(repeated_statements, deliver_the_rows_of_their_own_literals) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(firstRow("Select Roshko from raw1 where seriesID = 1"), "10");
    EXPECT_EQ(firstRow("Select Roshko from raw1 where seriesID = 3"), "30");
    EXPECT_EQ(firstRow("Select Roshko from raw1 where seriesID = '2'"), "20");
    EXPECT_EQ(firstRow("Select Roshko from raw1 where seriesID = 4"), "none");
    EXPECT_EQ(firstRow("Select ID from series where name = 's2'"), "2");
    EXPECT_EQ(firstRow("Select ID from series where name = 'S3'"), "3");
    EXPECT_EQ(firstRow("Select ID from series where name IN ('x', 'S1')"), "1");
    EXPECT_EQ(firstRow("Select ID from series where name IN ('S3', 'x')"), "3");
    EXPECT_EQ(firstRow("Select ID from series where name = \"S\" & 2"), "2");
  }
}

TEST_F(repeated_statements, deliver_the_literals_and_the_number_of_rows_that_they_ask_for) {
  EXPECT_EQ(firstRow("Select 5 AS n, ID from series where ID=1"), "5 1");
  EXPECT_EQ(firstRow("Select 6 AS n, ID from series where ID=2"), "6 2");
  EXPECT_EQ(curves.select("Select TOP 1 ID from series")->recordCount(), 1);
  EXPECT_EQ(curves.select("Select TOP 2 ID from series")->recordCount(), 2);
  EXPECT_EQ(firstRow("Select ID from series where ID = -1"), "none");
  EXPECT_EQ(firstRow("Select ID from series where ID = -(-1)"), "1");
}

TEST_F(repeated_statements, tell_numbers_from_texts_in_columns_that_hold_both) {
  createTable(curves.connection,
              {"jobs", {{"Job", OwnColumnType::anything}, {"n", OwnColumnType::whole}}});
  curves.execute("Insert into jobs (Job, n) VALUES ('07', 1)");
  curves.execute("Insert into jobs (Job, n) VALUES (7, 2)");
  curves.execute("Insert into jobs (Job, n) VALUES ('8', 3)");
  EXPECT_EQ(firstRow("Select n from jobs where Job = '07'"), "1");
  EXPECT_EQ(firstRow("Select n from jobs where Job = '7'"), "2");
  EXPECT_EQ(firstRow("Select n from jobs where Job = 7"), "2");
  EXPECT_EQ(firstRow("Select n from jobs where Job = 8"), "3");
  EXPECT_EQ(firstRow("Select n from jobs where Job = '8'"), "3");
}

TEST_F(repeated_statements, store_and_delete_what_their_own_literals_say) {
  for (const char* id : {"1", "2", "3"}) {
    curves.execute(std::string("Insert into raw2 (seriesID, Roshko) Select 10") + id +
                   " AS seriesID, Roshko from raw1 where seriesID=" + id);
  }
  curves.execute("Delete * from raw1 where seriesID = 1");
  curves.execute("Delete * from raw1 where seriesID = 3");
  curves.execute("Update raw1 SET Roshko = 21 where seriesID = 2");
  curves.execute("Update raw1 SET Roshko = 22 where seriesID = 1");
  EXPECT_EQ(curves.count("raw1"), 1);
  EXPECT_EQ(firstRow("Select seriesID, Roshko from raw1"), "2 21");
  EXPECT_EQ(firstRow("Select Roshko from raw2 where seriesID = 101"), "10");
  EXPECT_EQ(firstRow("Select Roshko from raw2 where seriesID = 103"), "30");
}

TEST_F(repeated_statements, see_columns_that_another_program_has_added) {
  EXPECT_EQ(firstRow("Select * from series where ID=1"), "1 'S1' 7");
  PlainSqlite(curves.path).run("ALTER TABLE series ADD COLUMN note TEXT DEFAULT 'new'");
  EXPECT_EQ(firstRow("Select * from series where ID=1"), "1 'S1' 7 'new'");
  EXPECT_EQ(firstRow("Select * from series where ID=2"), "2 'S2' 7 'new'");
}

TEST_F(repeated_statements, compare_with_the_kind_that_a_column_has_by_now) {
  const std::string statement = "Select n from own where code = '5'";
  PlainSqlite other(curves.path);
  other.run("CREATE TABLE own (code INTEGER, n INTEGER); INSERT INTO own VALUES (5, 1)");
  EXPECT_EQ(firstRow(statement), "1");
  other.run(
      "DROP TABLE own; CREATE TABLE own (code TEXT, n INTEGER); INSERT INTO own VALUES ('5', 2)");
  EXPECT_EQ(firstRow(statement), "2");
  other.run(
      "DROP TABLE own; CREATE TABLE own (code BLOB, n INTEGER); INSERT INTO own VALUES ('5', 3)");
  EXPECT_EQ(firstRow(statement), "3");
}

TEST_F(repeated_statements, say_that_a_table_is_gone_and_find_it_again) {
  const std::string statement = "Select n from own where n = 1";
  PlainSqlite other(curves.path);
  other.run("CREATE TABLE own (n INTEGER); INSERT INTO own VALUES (1)");
  EXPECT_EQ(firstRow(statement), "1");
  other.run("DROP TABLE own");
  EXPECT_NE(failureOf([&] { (void)curves.select(statement); }).description.find("'own'"),
            std::string::npos);
  other.run("CREATE TABLE own (n INTEGER); INSERT INTO own VALUES (1)");
  EXPECT_EQ(firstRow(statement), "1");
}

TEST_F(repeated_statements, leave_record_sets_of_the_same_text_alone) {
  const auto first = curves.connection->openRecordset("Select * from raw1 where seriesID = 1",
                                                      CursorType::dynamic, LockType::optimistic);
  const auto second = curves.connection->openRecordset("Select * from raw1 where seriesID = 2",
                                                       CursorType::dynamic, LockType::optimistic);
  EXPECT_EQ(first->value("Roshko"), Value(10.0));
  EXPECT_EQ(second->value("Roshko"), Value(20.0));
  constexpr std::array<std::string_view, 2> fields{"seriesID", "Roshko"};
  first->addRow(fields, std::array<Value, 2>{std::int64_t{1}, 11.0});
  EXPECT_EQ(first->value("Roshko"), Value(11.0));
  second->addRow(fields, std::array<Value, 2>{std::int64_t{2}, 21.0});
  EXPECT_EQ(second->value("seriesID"), Value(std::int64_t{2}));
  first->requery();
  second->requery();
  EXPECT_EQ(first->recordCount(), 2);
  EXPECT_EQ(first->value("seriesID"), Value(std::int64_t{1}));
  EXPECT_EQ(second->recordCount(), 2);
  EXPECT_EQ(second->value("seriesID"), Value(std::int64_t{2}));
}

TEST_F(repeated_statements, read_added_rows_back_with_their_own_literals) {
  const auto add = [&](const std::string& statement) {
    const auto rows =
        curves.connection->openRecordset(statement, CursorType::dynamic, LockType::optimistic);
    constexpr std::array<std::string_view, 1> fields{"seriesID"};
    rows->addRow(fields, std::array<Value, 1>{std::int64_t{9}});
    return rows->value("n");
  };
  EXPECT_EQ(add("Select seriesID, 5 AS n from raw1 where seriesID = 1"), Value(std::int64_t{5}));
  EXPECT_EQ(add("Select seriesID, 6 AS n from raw1 where seriesID = 2"), Value(std::int64_t{6}));
}

TEST_F(repeated_statements, work_after_one_of_them_has_failed) {
  PlainSqlite(curves.path).run("CREATE UNIQUE INDEX once ON raw3 (seriesID)");
  const auto insert = [&](const std::string& id) {
    return failureOf([&] {
             curves.execute("Insert into raw3 (seriesID, Roshko) Select " + id +
                            " AS seriesID, Roshko from raw1 where seriesID = 1");
           })
        .number;
  };
  EXPECT_EQ(insert("1"), 0);
  EXPECT_EQ(insert("1"), sqlite::constraintFailed);
  EXPECT_EQ(insert("2"), 0);
  const auto divide = [&](const std::string& id) {
    return failureOf([&] {
             (void)curves.select("Select 1 / (Roshko - 10) AS q from raw1 where seriesID = " + id);
           })
        .number;
  };
  EXPECT_EQ(divide("2"), 0);
  EXPECT_EQ(divide("1"), static_cast<std::int32_t>(RunTimeError::divisionByZero));
  EXPECT_EQ(divide("3"), 0);
}

TEST_F(repeated_statements, hold_no_lock_between_their_runs) {
  (void)firstRow("Select Roshko from raw1 where seriesID = 1");
  curves.execute("Delete * from raw1 where seriesID = 1");
  EXPECT_EQ(failureOf([&] {
              (void)firstRow("Select 1 / (Roshko - 20) AS q from raw1 where seriesID = 2");
            }).number,
            static_cast<std::int32_t>(RunTimeError::divisionByZero));
  PlainSqlite other(curves.path);
  EXPECT_NO_THROW(other.run("BEGIN EXCLUSIVE; DELETE FROM raw1"));
  EXPECT_EQ(failureOf([&] { (void)firstRow("Select Roshko from raw1 where seriesID = 2"); }).number,
            genericFailure);
  other.run("COMMIT");
  EXPECT_EQ(firstRow("Select Roshko from raw1 where seriesID = 2"), "none");
}

TEST_F(repeated_statements, are_undone_with_their_transaction) {
  curves.execute("Delete * from raw1 where seriesID = 1");
  {
    const Transaction transaction(curves.connection);
    curves.execute("Delete * from raw1 where seriesID = 2");
    EXPECT_EQ(firstRow("Select Roshko from raw1 where seriesID = 2"), "none");
  }
  EXPECT_EQ(firstRow("Select Roshko from raw1 where seriesID = 2"), "20");
  curves.execute("Delete * from raw1 where seriesID = 3");
  EXPECT_EQ(curves.count("raw1"), 1);
}

// A transaction that is undone gives back the number of its schema version, and the next one takes
// it.
TEST_F(repeated_statements, know_no_table_of_a_transaction_that_was_undone) {
  const OwnTable before{"own", {{"Code", OwnColumnType::whole}, {"Old", OwnColumnType::whole}}};
  const OwnTable after{"own", {{"Code", OwnColumnType::text}, {"New", OwnColumnType::whole}}};
  {
    const Transaction transaction(curves.connection);
    createTable(curves.connection, before);
    createTable(curves.connection, before);
    curves.execute("Insert into own (Code, Old) VALUES (5, 1)");
    EXPECT_EQ(firstRow("Select * from own where Code = '5'"), "5 1");
  }
  createTable(curves.connection, after);
  EXPECT_TRUE(hasTable(curves.connection, "own"));
  curves.execute("Insert into own (Code, New) VALUES ('5', 2)");
  EXPECT_EQ(firstRow("Select * from own where Code = '5'"), "'5' 2");
}

TEST_F(repeated_statements, know_no_table_that_was_made_and_undone) {
  const OwnTable own{"own", {{"n", OwnColumnType::whole}}};
  {
    const Transaction transaction(curves.connection);
    createTable(curves.connection, own);
    EXPECT_TRUE(hasTable(curves.connection, "own"));
  }
  createTable(curves.connection, {"other", {{"n", OwnColumnType::whole}}});
  EXPECT_FALSE(hasTable(curves.connection, "own"));
  createTable(curves.connection, own);
  EXPECT_TRUE(hasTable(curves.connection, "own"));
}

TEST_F(repeated_statements, make_a_table_anew_that_another_program_has_removed) {
  const OwnTable own{"own", {{"n", OwnColumnType::whole}}};
  for (int i = 0; i < 3; ++i) createTable(curves.connection, own);
  PlainSqlite(curves.path).run("DROP TABLE own");
  createTable(curves.connection, own);
  curves.execute("Insert into own (n) VALUES (1)");
  EXPECT_EQ(curves.count("own"), 1);
}

TEST_F(repeated_statements, leave_nothing_open_when_the_connection_closes) {
  for (int i = 0; i < 2; ++i) {
    (void)firstRow("Select Roshko from raw1 where seriesID = 1");
    curves.execute("Delete * from raw1 where seriesID = 1");
    const auto rows = curves.connection->openRecordset("Select * from raw1", CursorType::dynamic,
                                                       LockType::batchOptimistic);
    constexpr std::array<std::string_view, 1> fields{"seriesID"};
    rows->addRow(fields, std::array<Value, 1>{std::int64_t{4}});
    rows->updateBatch();
    curves.connection->close();
    EXPECT_NO_THROW(
        PlainSqlite(curves.path).run("PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; COMMIT"));
    EXPECT_NE(failureOf([&] { rows->requery(); }).number, 0);
    curves.connection->open();
  }
  EXPECT_EQ(curves.select("Select * from raw1 where seriesID = 4")->recordCount(), 2);
}

TEST_F(repeated_statements, may_be_more_than_are_kept) {
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 400; ++i) {
      const std::string name = "n" + std::to_string(i);
      ASSERT_EQ(firstRow("Select ID AS " + name + " from series where ID = 2"), "2");
      ASSERT_EQ(firstRow("Select ID, " + std::to_string(i) + " AS n from series where ID = 2"),
                "2 " + std::to_string(i));
    }
  }
}

TEST_F(repeated_statements, copy_into_the_file_that_each_of_them_names) {
  std::array<std::unique_ptr<CurveFile>, 2> others{std::make_unique<CurveFile>(),
                                                   std::make_unique<CurveFile>()};
  // The same table at another place of the file.
  PlainSqlite(others[1]->path)
      .run(
          "DROP TABLE raw1; CREATE TABLE first (a TEXT); "
          "CREATE TABLE raw1 (Roshko REAL, seriesID INTEGER)");
  for (const char* id : {"1", "2", "3"}) {
    for (const auto& other : others) {
      curves.execute("INSERT INTO raw1 ( seriesID, Roshko ) IN '" + other->path +
                     "' SELECT seriesID, Roshko FROM raw1 WHERE seriesID = " + id);
    }
  }
  for (const auto& other : others) {
    EXPECT_EQ(other->count("raw1"), 3);
    EXPECT_EQ(other->select("Select Roshko from raw1 where seriesID = 3")->value(0), Value(30.0));
  }
}

}  // namespace
}  // namespace pelmora
