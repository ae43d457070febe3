// Tables of a host's own, and changes that belong together.
// SPDX-License-Identifier: MIT
#include "base/run_time_error.h"
#include "tests/support/curve_file.h"
#include "tests/support/plain_sqlite.h"

#include <pelmora/own_tables.h>

#include <gtest/gtest.h>

#include <array>

namespace pelmora {
namespace {

using test::CurveFile;
using test::failureOf;

const OwnTable notes{"own_notes",
                     {{"ID", OwnColumnType::key},
                      {"SeriesID", OwnColumnType::whole},
                      {"Weight", OwnColumnType::real},
                      {"Words", OwnColumnType::text},
                      {"Job", OwnColumnType::anything}}};

class own_tables : public testing::Test {
 protected:
  CurveFile curves;
};

TEST_F(own_tables, are_made_once_and_take_statements) {
  EXPECT_FALSE(hasTable(curves.connection, "own_notes"));
  createTable(curves.connection, notes);
  curves.execute(
      "Insert into own_notes (SeriesID, Weight, Words, Job) VALUES (3, 1.5, 'Ab', '07')");
  createTable(curves.connection, notes);
  EXPECT_TRUE(hasTable(curves.connection, "OWN_NOTES"));
  const auto rows = curves.select("Select * from own_notes where words='aB'");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(rows->value("ID"), Value(std::int64_t{1}));
  EXPECT_EQ(rows->value("SeriesID"), Value(std::int64_t{3}));
  EXPECT_EQ(rows->value("Weight"), Value(1.5));
  EXPECT_EQ(rows->value("Job"), Value("07"));
}

TEST_F(own_tables, take_the_columns_that_a_later_version_adds) {
  createTable(curves.connection, notes);
  curves.execute("Insert into own_notes (Weight) VALUES (1.5)");
  OwnTable later = notes;
  later.Columns.push_back({"Added \"here\"", OwnColumnType::text});
  for (int i = 0; i < 2; ++i) createTable(curves.connection, later);
  const auto rows = curves.select("Select * from own_notes");
  EXPECT_EQ(rows->value("Weight"), Value(1.5));
  EXPECT_EQ(rows->value("Added \"here\""), Value());
  curves.execute("Insert into own_notes ([Added \"here\"]) VALUES ('x')");
  createTable(curves.connection, notes);  // the earlier version once more
  EXPECT_EQ(curves.count("own_notes"), 2);
}

TEST_F(own_tables, never_use_a_key_twice) {
  createTable(curves.connection, notes);
  curves.execute("Insert into own_notes (SeriesID) VALUES (1)");
  curves.execute("Delete * from own_notes");
  curves.execute("Insert into own_notes (SeriesID) VALUES (2)");
  EXPECT_EQ(curves.select("Select ID from own_notes")->value(0), Value(std::int64_t{2}));
}

TEST_F(own_tables, know_their_indexes_and_keys) {
  createTable(curves.connection, notes);
  const auto& connection = curves.connection;
  EXPECT_TRUE(hasIndex(connection, "Own_Notes", {"id"}));
  EXPECT_FALSE(hasIndex(connection, "own_notes", {"SeriesID"}));
  createIndex(connection, {"own_notes_series", "own_notes", {"SeriesID", "Words"}});
  createIndex(connection, {"own_notes_series", "own_notes", {"SeriesID", "Words"}});
  EXPECT_TRUE(hasIndex(connection, "own_notes", {"seriesid"}));
  EXPECT_TRUE(hasIndex(connection, "own_notes", {"SeriesID", "Words"}));
  EXPECT_FALSE(hasIndex(connection, "own_notes", {"Words"}));
}

TEST_F(own_tables, may_have_any_name) {
  createTable(curves.connection, {"odd\"; name", {{"a \"b\"", OwnColumnType::whole}}});
  EXPECT_TRUE(hasTable(curves.connection, "odd\"; name"));
}

TEST_F(own_tables, need_a_database_that_can_be_designed) {
  EXPECT_EQ(failureOf([] { (void)hasTable({}, "x"); }).number, 91);
  EXPECT_EQ(failureOf([] { Transaction none{ConnectionPtr()}; }).number, 91);
}

class changes_made_together : public own_tables {
 protected:
  changes_made_together() { curves.execute("Insert into raw1 (seriesID, Roshko) VALUES (1, 2)"); }
  void addBatch(double roshko) const {
    const auto rows = curves.connection->openRecordset("Select * from raw1", CursorType::dynamic,
                                                       LockType::batchOptimistic);
    constexpr std::array<std::string_view, 2> fields{"seriesID", "Roshko"};
    rows->addRow(fields, std::array<Value, 2>{std::int64_t{1}, roshko});
    rows->updateBatch();
  }
};

TEST_F(changes_made_together, are_all_kept_after_commit) {
  {
    Transaction transaction(curves.connection);
    curves.execute("Delete * from raw1");
    addBatch(3);
    addBatch(4);
    createTable(curves.connection, notes);
    transaction.commit();
  }
  EXPECT_EQ(curves.count("raw1"), 2);
  EXPECT_TRUE(hasTable(curves.connection, "own_notes"));
}

TEST_F(changes_made_together, are_all_undone_without_commit) {
  {
    const Transaction transaction(curves.connection);
    curves.execute("Delete * from raw1");
    addBatch(3);
    createTable(curves.connection, notes);
  }
  EXPECT_EQ(curves.select("Select Roshko from raw1")->value(0), Value(2.0));
  EXPECT_FALSE(hasTable(curves.connection, "own_notes"));
  addBatch(5);
  EXPECT_EQ(curves.count("raw1"), 2);
}

TEST_F(changes_made_together, keep_others_from_writing_but_not_from_reading) {
  const ConnectionPtr other = sqliteConnection(curves.path);
  other->open();
  const Transaction transaction(curves.connection);
  curves.execute("Delete * from raw1");
  EXPECT_EQ(failureOf([&] { Transaction second(other); }).number, genericFailure);
  EXPECT_EQ(
      other->openRecordset("Select * from raw1", CursorType::forwardOnly, LockType::optimistic)
          ->recordCount(),
      1);
}

TEST_F(changes_made_together, let_others_read_however_many_they_are) {
  const ConnectionPtr other = sqliteConnection(curves.path);
  other->open();
  const Transaction transaction(curves.connection);
  // Some 5 MB: twice what the engine keeps in memory unless it is told to keep more.
  const std::string text(500000, 'x');
  for (int i = 0; i < 10; ++i) {
    curves.execute("INSERT INTO DataFitResults (seriesID, summary) VALUES (1, '" + text + "')");
  }
  EXPECT_EQ(
      other->openRecordset("Select * from raw1", CursorType::forwardOnly, LockType::optimistic)
          ->recordCount(),
      1);
}

TEST_F(changes_made_together, are_not_seen_in_a_view_that_began_before) {
  const ConnectionPtr other = sqliteConnection(curves.path);
  other->open();
  const auto count = [&] {
    return other->openRecordset("Select * from raw1", CursorType::forwardOnly, LockType::optimistic)
        ->recordCount();
  };
  {
    const ReadView view(other);
    EXPECT_EQ(count(), 1);
    Transaction transaction(curves.connection);
    addBatch(3);
    EXPECT_EQ(failureOf([&] { transaction.commit(); }).number, genericFailure);
    EXPECT_EQ(count(), 1);
  }
  addBatch(4);
  EXPECT_EQ(count(), 2);
}

TEST_F(changes_made_together, are_not_nested) {
  const Transaction transaction(curves.connection);
  EXPECT_NE(failureOf([&] { Transaction second(curves.connection); }).number, 0);
}

TEST_F(changes_made_together, store_nothing_more_once_the_engine_has_undone_them) {
  // A rule of the database that ends the whole transaction, as a full disk does.
  test::PlainSqlite(curves.path)
      .run(
          "CREATE TRIGGER fails BEFORE INSERT ON curve BEGIN SELECT RAISE(ROLLBACK, 'no room'); "
          "END");
  {
    Transaction transaction(curves.connection);
    curves.execute("Delete * from raw1");
    EXPECT_NE(failureOf([&] { curves.execute("Insert into curve (seriesID) VALUES (1)"); }).number,
              0);
    EXPECT_NE(failureOf([&] { curves.execute("Insert into merge (seriesID) VALUES (1)"); }).number,
              0);
    EXPECT_NE(failureOf([&] { addBatch(9); }).number, 0);
    EXPECT_NE(failureOf([&] { transaction.commit(); }).number, 0);
  }
  EXPECT_EQ(curves.count("raw1"), 1);
  EXPECT_EQ(curves.count("merge"), 0);
  curves.execute("Insert into merge (seriesID) VALUES (1)");
  EXPECT_EQ(curves.count("merge"), 1);
}

}  // namespace
}  // namespace pelmora
