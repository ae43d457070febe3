// Connections one after the other, each of which knows what those before it have learnt: each sees
// the file as if it were the first.
// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_error.h"
#include "adapters/sqlite/sqlite_session.h"
#include "store/transactions.h"
#include "tests/support/curve_file.h"
#include "tests/support/plain_sqlite.h"

#include <pelmora/own_tables.h>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

namespace pelmora {
namespace {

namespace fs = std::filesystem;
using test::failureOf;
using test::PlainSqlite;

class tables_known_from_before : public testing::Test {
 protected:
  tables_known_from_before() { make(path, "n INTEGER", "1"); }
  static void make(const std::string& file, const std::string& columns, const std::string& values) {
    PlainSqlite(file).run("CREATE TABLE own (" + columns + "); INSERT INTO own VALUES (" + values +
                          ")");
  }
  [[nodiscard]] ConnectionPtr opened() const {
    ConnectionPtr connection = sqliteConnection(path, {}, resting);
    connection->open();
    return connection;
  }
  // The values of the first row, by a connection of its own.
  [[nodiscard]] std::string row(const std::string& statement = "Select * from own") const {
    return rowBy(*opened(), statement);
  }
  [[nodiscard]] static std::string rowBy(Connection& connection,
                                         const std::string& statement = "Select * from own") {
    const auto rows =
        connection.openRecordset(statement, CursorType::forwardOnly, LockType::optimistic);
    std::string row;
    for (std::size_t i = 0; i < rows->fieldCount(); ++i) {
      const Value value = rows->value(i);
      const auto* text = std::get_if<std::string>(&value);
      row += (i == 0 ? "" : " ") +
             (text != nullptr ? *text : std::to_string(std::get<std::int64_t>(value)));
    }
    return row;
  }

  const test::ScratchFolder folder;
  const std::string path = folder.file("own.db");
  const std::shared_ptr<sqlite::RestingDatabases> resting = restingDatabases();
};

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

TEST_F(tables_known_from_before, do_not_outlive_the_file) {
  EXPECT_EQ(row(), "1");
  fs::remove(path);
  EXPECT_EQ(failureOf([&] { (void)opened(); }).number, 53);
  EXPECT_FALSE(fs::exists(path));
}

TEST_F(tables_known_from_before, are_those_of_the_file_that_is_there_now) {
  EXPECT_EQ(row(), "1");
  make(folder.file("new.db"), "m INTEGER, word TEXT", "2, 'two'");
  fs::rename(folder.file("new.db"), path);
  EXPECT_EQ(row(), "2 two");
}

// The engine's version of the schema, which is counted from the first table on, is then the same.
TEST_F(tables_known_from_before, are_those_of_a_file_that_was_copied_over_it) {
  make(folder.file("new.db"), "m INTEGER", "2");
  const std::string before = folder.file("before.db");
  fs::copy_file(path, before);
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(row(), "1");
    fs::copy_file(folder.file("new.db"), path, fs::copy_options::overwrite_existing);
    EXPECT_EQ(row(), "2");
    fs::copy_file(before, path, fs::copy_options::overwrite_existing);
  }
}

// Pages that the engine keeps are compared with the file by a counter alone, which is then the
// same.
TEST_F(tables_known_from_before, have_the_rows_of_a_file_that_was_copied_over_it) {
  make(folder.file("new.db"), "n INTEGER", "2");
  const std::string before = folder.file("before.db");
  fs::copy_file(path, before);
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(row(), "1");
    fs::copy_file(folder.file("new.db"), path, fs::copy_options::overwrite_existing);
    EXPECT_EQ(row(), "2");
    fs::copy_file(before, path, fs::copy_options::overwrite_existing);
  }
}

// Texts and version of the schema are the same, but not the page where the table begins.
TEST_F(tables_known_from_before, may_lie_elsewhere_in_a_file_that_was_copied_over_it) {
  EXPECT_EQ(row(), "1");
  PlainSqlite other(folder.file("new.db"));
  other.run(
      "CREATE TABLE first (a); CREATE TABLE own (n INTEGER); INSERT INTO own VALUES (2);"
      "DROP TABLE first; PRAGMA schema_version = 1");
  fs::copy_file(folder.file("new.db"), path, fs::copy_options::overwrite_existing);
  EXPECT_EQ(row(), "2");
}

TEST_F(tables_known_from_before, may_be_in_a_file_of_another_format) {
  for (const std::string format :
       {"encoding = 'UTF-16le'", "page_size = 1024", "auto_vacuum = FULL", "journal_mode = WAL"}) {
    const std::string name = folder.file("new.db");
    {
      PlainSqlite other(name);
      other.run("PRAGMA " + format +
                "; CREATE TABLE own (n INTEGER); INSERT INTO own VALUES ('é');"
                "PRAGMA schema_version = 1");
    }
    EXPECT_EQ(row(), "1");
    fs::copy_file(path, folder.file("before.db"), fs::copy_options::overwrite_existing);
    fs::rename(name, path);
    for (int round = 0; round < 2; ++round) EXPECT_EQ(row(), "é") << format;
    opened()->execute("Update own SET n = 'b'");
    EXPECT_EQ(row(), "b") << format;
    fs::copy_file(folder.file("before.db"), path, fs::copy_options::overwrite_existing);
  }
}

// Files of the oldest format store an index in ascending order, whatever its definition says.
TEST_F(tables_known_from_before, may_have_indexes_of_an_older_format) {
  const auto fill = [](PlainSqlite& database) {
    database.run(
        "CREATE TABLE more (n INTEGER); CREATE INDEX falling ON more (n DESC);"
        "INSERT INTO more VALUES (3), (4)");
  };
  PlainSqlite old(folder.file("old.db"));
  sqlite3_db_config(old.get(), SQLITE_DBCONFIG_LEGACY_FILE_FORMAT, 1, nullptr);
  old.run("CREATE TABLE own (n INTEGER)");
  fill(old);
  PlainSqlite now(path);
  fill(now);
  EXPECT_EQ(row("Select n from more ORDER BY n"), "3");
  fs::copy_file(folder.file("old.db"), path, fs::copy_options::overwrite_existing);
  EXPECT_EQ(row("Select n from more ORDER BY n"), "3");
}

TEST_F(tables_known_from_before, are_those_of_the_file_that_a_link_names_now) {
  const std::string link = folder.file("link.db");
  make(folder.file("other.db"), "n INTEGER", "2");
  for (const char* n : {"1", "2", "1", "2"}) {
    fs::remove(link);
    fs::create_symlink(*n == '1' ? path : folder.file("other.db"), link);
    const ConnectionPtr connection = sqliteConnection(link, {}, resting);
    connection->open();
    EXPECT_EQ(rowBy(*connection), n);
  }
}

// Nothing else may open it then, or the connection would lose its locks.
TEST_F(tables_known_from_before, belong_to_a_file_in_use_whatever_a_link_names_now) {
  const std::string link = folder.file("link.db");
  make(folder.file("other.db"), "n INTEGER", "2");
  fs::create_symlink(path, link);
  sqliteConnection(link, {}, resting)->open();
  fs::remove(link);
  fs::create_symlink(folder.file("other.db"), link);
  const ConnectionPtr connection = opened();
  EXPECT_TRUE(isOpenAsDatabase(path));
  EXPECT_FALSE(isOpenAsDatabase(link));
}

TEST_F(tables_known_from_before, are_gone_with_a_file_that_something_else_replaces) {
  EXPECT_EQ(row(), "1");
  fs::remove(path);
  fs::create_directory(path);
  EXPECT_EQ(failureOf([&] { (void)opened(); }).number, 75);
  fs::remove(path);
  std::ofstream(path) << "no database";
  EXPECT_EQ(failureOf([&] { (void)opened(); }).number, 321);
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
