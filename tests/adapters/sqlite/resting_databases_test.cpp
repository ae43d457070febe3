// Connections one after the other, each of which knows what those before it have learnt: each sees
// the file as if it were the first.
// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_error.h"
#include "adapters/sqlite/sqlite_session.h"
#include "store/transactions.h"
#include "tests/adapters/sqlite/resting_database.h"

#include <pelmora/own_tables.h>

#include <sqlite3.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace pelmora {
namespace {

namespace fs = std::filesystem;
using test::failureOf;
using test::PlainSqlite;

class tables_known_from_before : public test::RestingDatabase {};

TEST_F(tables_known_from_before, are_asked_for_once) {
  const auto questions = [&] {
    sqlite::SqliteSession session(path, {}, resting);
    int count = 0;
    const auto counted = [](unsigned /*event*/, void* counter, void* /*statement*/,
                            void* /*text*/) {
      ++*static_cast<int*>(counter);
      return 0;
    };
    sqlite3_trace_v2(session.database(), SQLITE_TRACE_STMT, counted, &count);
    EXPECT_TRUE(session.catalogue().findTable("main", "own").has_value());
    sqlite3_trace_v2(session.database(), 0, nullptr, nullptr);
    session.close();
    return count;
  };
  EXPECT_GT(questions(), 1);
  EXPECT_EQ(questions(), 1);  // whether the schema is still the same
}

TEST_F(tables_known_from_before, may_be_made_where_there_were_none) {
  const OwnTable settings{"series", {{"note", OwnColumnType::text}}};
  for (int round = 0; round < 2; ++round) EXPECT_FALSE(hasTable(opened(), "series"));
  createTable(opened(), settings);
  for (int round = 0; round < 2; ++round) EXPECT_TRUE(hasTable(opened(), "series"));
  createTable(opened(), {"series", {{"note", OwnColumnType::text}, {"n", OwnColumnType::whole}}});
  opened()->execute("Insert into series (note, n) VALUES ('a', 2)");
  EXPECT_EQ(row("Select * from series"), "a 2");
}

// That it was there is known by the text of the schema, too.
TEST_F(tables_known_from_before, get_an_index_again_that_another_program_has_dropped) {
  const std::vector<std::string> columns{"n"};
  const auto make = [&] { createIndex(opened(), {"own_n", "own", columns, false}); };
  for (int round = 0; round < 3; ++round) {
    for (int time = 0; time < 3; ++time) make();  // the second has nothing to do, the third knows
    EXPECT_TRUE(hasIndex(opened(), "own", columns)) << round;
    const int version = 2 + round;  // as before the drop
    PlainSqlite(path).run("DROP INDEX own_n; PRAGMA schema_version = " + std::to_string(version));
    EXPECT_FALSE(hasIndex(opened(), "own", columns)) << round;
  }
  make();
  EXPECT_TRUE(hasIndex(opened(), "own", columns));
}

TEST_F(tables_known_from_before, leave_no_file_open) {
  EXPECT_EQ(row(), "1");
  for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
    std::error_code ignored;
    EXPECT_NE(fs::read_symlink(entry, ignored), fs::canonical(path));
  }
  EXPECT_FALSE(isOpenAsDatabase(path));
}

TEST_F(tables_known_from_before, leave_no_transaction_open) {
  EXPECT_EQ(row(), "1");
  {
    const ConnectionPtr connection = opened();
    dynamic_cast<Transactions&>(*connection).begin();
    connection->execute("Update own SET n = 2");
  }
  EXPECT_EQ(row(), "1");
  PlainSqlite(path).run("UPDATE own SET n = 3");
  EXPECT_EQ(row(), "3");
}

TEST_F(tables_known_from_before, wait_as_long_as_the_next_connection_wants) {
  EXPECT_EQ(row(), "1");
  PlainSqlite other(path);
  other.run("BEGIN EXCLUSIVE");
  int asked = 0;
  const auto goesOn = [&](std::chrono::milliseconds) { return ++asked < 3; };
  const ConnectionPtr connection =
      sqliteConnection(path, {std::chrono::minutes(1), goesOn}, resting);
  EXPECT_EQ(failureOf([&] { connection->open(); }).number, genericFailure);
  EXPECT_EQ(asked, 3);
  other.run("COMMIT");
  EXPECT_EQ(row(), "1");
}

// They may belong to an object that the caller destroys after its connection.
TEST_F(tables_known_from_before, keep_no_function_of_a_caller) {
  const auto held = std::make_shared<int>(0);
  Patience patience;
  patience.goesOn = [held](std::chrono::milliseconds) { return true; };
  patience.stopRequested = [held] { return false; };
  {
    const ConnectionPtr connection = sqliteConnection(path, std::exchange(patience, {}), resting);
    connection->open();
    EXPECT_GT(held.use_count(), 1);
  }
  EXPECT_EQ(held.use_count(), 1);
  EXPECT_EQ(row(), "1");
}

TEST_F(tables_known_from_before, may_be_those_of_many_files) {
  std::vector<std::string> files;
  for (int n = 0; n < 7; ++n) {
    files.push_back(folder.file(std::to_string(n) + ".db"));
    make(files.back(), "n INTEGER", std::to_string(n));
  }
  for (int round = 0; round < 3; ++round) {
    for (int n = 0; n < 7; ++n) {
      const ConnectionPtr connection =
          sqliteConnection(files[static_cast<std::size_t>(n)], {}, resting);
      connection->open();
      EXPECT_EQ(rowBy(*connection), std::to_string(n));
    }
  }
}

TEST_F(tables_known_from_before, are_those_of_a_schema_that_another_program_has_changed) {
  EXPECT_EQ(row(), "1");
  PlainSqlite other(path);
  other.run("ALTER TABLE own ADD COLUMN word TEXT DEFAULT 'new'");
  EXPECT_EQ(row(), "1 new");
  other.run("ALTER TABLE own RENAME COLUMN word TO note; PRAGMA schema_version = 1");
  EXPECT_EQ(row("Select note from own"), "new");
  other.run("DROP TABLE own");
  EXPECT_NE(failureOf([&] { (void)row(); }).description.find("'own'"), std::string::npos);
}

TEST_F(tables_known_from_before, are_those_of_a_schema_that_changes_between_two_statements) {
  EXPECT_EQ(row(), "1");
  const ConnectionPtr connection = opened();
  PlainSqlite other(path);
  other.run("ALTER TABLE own ADD COLUMN word TEXT DEFAULT 'new'");
  EXPECT_EQ(rowBy(*connection), "1 new");
  other.run("ALTER TABLE own ADD COLUMN more TEXT DEFAULT 'x'");
  EXPECT_EQ(rowBy(*connection), "1 new x");
  EXPECT_EQ(row(), "1 new x");
}

TEST_F(tables_known_from_before, are_not_those_of_changes_that_were_undone) {
  EXPECT_EQ(row(), "1");
  const ConnectionPtr connection = opened();
  {
    const Transaction undone(connection);
    createTable(connection, {"made", {{"a", OwnColumnType::whole}}});
    connection->execute("Insert into made (a) VALUES (3)");
    EXPECT_EQ(rowBy(*connection, "Select * from made"), "3");
  }
  PlainSqlite(path).run("CREATE TABLE made (b INTEGER); INSERT INTO made VALUES (4)");
  EXPECT_EQ(rowBy(*connection, "Select * from made"), "4");
  EXPECT_EQ(row("Select * from made"), "4");
}

TEST_F(tables_known_from_before, follow_the_rows_that_another_program_stores) {
  PlainSqlite other(path);
  for (int n = 1; n < 4; ++n) {
    EXPECT_EQ(row(), std::to_string(n));
    other.run("UPDATE own SET n = n + 1");
  }
}

TEST_F(tables_known_from_before, are_refused_once_a_view_takes_their_place) {
  PlainSqlite other(path);
  other.run("CREATE TABLE series (ID INTEGER, name TEXT); INSERT INTO series VALUES (1, 'S')");
  EXPECT_EQ(row("Select * from series"), "1 S");
  other.run("DROP TABLE series; CREATE VIEW series AS SELECT 2 AS ID, 'T' AS name");
  EXPECT_EQ(failureOf([&] { (void)row("Select * from series"); }).number, sqlite::untrustedSchema);
}

TEST_F(tables_known_from_before, hold_nobody_up) {
  const ConnectionPtr connection = opened();
  const auto rows =
      connection->openRecordset("Select * from own", CursorType::forwardOnly, LockType::optimistic);
  PlainSqlite(path).run("BEGIN EXCLUSIVE; UPDATE own SET n = 2; COMMIT");
  EXPECT_EQ(rowBy(*connection), "2");
  (void)failureOf([&] { (void)rowBy(*connection, "Select missing from own"); });
  PlainSqlite(path).run("BEGIN EXCLUSIVE; UPDATE own SET n = 3; COMMIT");
  EXPECT_EQ(rowBy(*connection), "3");
}

TEST_F(tables_known_from_before, leave_each_statement_its_own_literals) {
  PlainSqlite(path).run("INSERT INTO own VALUES (2), (3)");
  for (const char* n : {"1", "2", "3", "1"})
    EXPECT_EQ(row(std::string("Select n from own where n = ") + n), n);
  opened()->execute("Delete * from own where n = 2");
  opened()->execute("Update own SET n = 5 where n = 3");
  EXPECT_EQ(row("Select COUNT(*) from own"), "2");
  EXPECT_EQ(row("Select n from own where n = 5"), "5");
}

TEST_F(tables_known_from_before, compare_with_the_kind_that_a_column_has_by_now) {
  const std::string statement = "Select n from coded where code = '5'";
  PlainSqlite other(path);
  int n = 0;
  for (const std::string kind : {"INTEGER", "TEXT", "BLOB", "TEXT", "INTEGER"}) {
    const std::string value = kind == "INTEGER" ? "5" : "'5'";
    other.run("DROP TABLE IF EXISTS coded; CREATE TABLE coded (code " + kind +
              ", n INTEGER); INSERT INTO coded VALUES (" + value + ", " + std::to_string(++n) +
              ")");
    EXPECT_EQ(row(statement), std::to_string(n)) << kind;
    EXPECT_EQ(row(statement), std::to_string(n)) << kind;
  }
}

// The same tables, which the engine counts another version of.
TEST_F(tables_known_from_before, are_those_of_files_that_are_alike) {
  const std::string alike = folder.file("alike.db");
  make(alike, "n INTEGER", "7");
  PlainSqlite(alike).run("CREATE TABLE gone (a); DROP TABLE gone");
  const std::string both = "Select n from own where n > 0";
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(row(both), "1");
    const ConnectionPtr connection = sqliteConnection(alike, {}, resting);
    connection->open();
    EXPECT_EQ(rowBy(*connection, both), "7");
    EXPECT_EQ(row(both), "1");
  }
}

TEST_F(tables_known_from_before, do_not_let_record_sets_of_a_closed_connection_store) {
  constexpr std::array<std::string_view, 1> fields{"n"};
  const std::array<Value, 1> values{std::int64_t{4}};
  const ConnectionPtr closed = opened();
  const auto rows =
      closed->openRecordset("Select * from own", CursorType::dynamic, LockType::optimistic);
  closed->close();
  const ConnectionPtr next = opened();
  EXPECT_EQ(failureOf([&] { rows->addRow(fields, values); }).number, sqlite::connectionClosed);
  next->openRecordset("Select * from own", CursorType::dynamic, LockType::optimistic)
      ->addRow(fields, values);
  EXPECT_EQ(row("Select COUNT(*) from own"), "2");
}

TEST_F(tables_known_from_before, serve_many_threads) {
  make(folder.file("other.db"), "m INTEGER", "2");
  std::atomic<int> wrong = 0;
  const auto work = [&](const std::string& file, const std::string& expected) {
    for (int round = 0; round < 50; ++round) {
      const ConnectionPtr connection = sqliteConnection(file, {}, resting);
      connection->open();
      if (rowBy(*connection) != expected) ++wrong;
    }
  };
  std::vector<std::jthread> threads;
  for (int i = 0; i < 2; ++i) {
    threads.emplace_back([&] { work(path, "1"); });
    threads.emplace_back([&] { work(folder.file("other.db"), "2"); });
  }
  threads.clear();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace pelmora
