// The file that is there when a database wakes up may be another one than before: nothing that was
// known of the former is taken for it.
// SPDX-License-Identifier: MIT
#include "tests/adapters/sqlite/resting_database.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace pelmora {
namespace {

namespace fs = std::filesystem;
using test::failureOf;
using test::PlainSqlite;

class tables_of_a_replaced_file : public test::RestingDatabase {
 protected:
  // Each file shows its own row while another one is copied over it again and again.
  void expectRowsOfCopies(const std::string& columnsOfOther) const {
    make(folder.file("new.db"), columnsOfOther, "2");
    const std::string before = folder.file("before.db");
    fs::copy_file(path, before);
    for (int round = 0; round < 3; ++round) {
      EXPECT_EQ(row(), "1");
      fs::copy_file(folder.file("new.db"), path, fs::copy_options::overwrite_existing);
      EXPECT_EQ(row(), "2");
      fs::copy_file(before, path, fs::copy_options::overwrite_existing);
    }
  }
};

TEST_F(tables_of_a_replaced_file, do_not_outlive_it) {
  EXPECT_EQ(row(), "1");
  fs::remove(path);
  EXPECT_EQ(failureOf([&] { (void)opened(); }).number, 53);
  EXPECT_FALSE(fs::exists(path));
}

TEST_F(tables_of_a_replaced_file, are_those_of_the_file_that_is_there_now) {
  EXPECT_EQ(row(), "1");
  make(folder.file("new.db"), "m INTEGER, word TEXT", "2, 'two'");
  fs::rename(folder.file("new.db"), path);
  EXPECT_EQ(row(), "2 two");
}

// The engine's version of the schema, which is counted from the first table on, is then the same.
TEST_F(tables_of_a_replaced_file, are_those_of_a_file_that_was_copied_over_it) {
  expectRowsOfCopies("m INTEGER");
}

// Pages that the engine keeps are compared with the file by a counter alone, which is then the
// same.
TEST_F(tables_of_a_replaced_file, have_the_rows_of_a_file_that_was_copied_over_it) {
  expectRowsOfCopies("n INTEGER");
}

// Texts and version of the schema are the same, but not the page where the table begins.
TEST_F(tables_of_a_replaced_file, may_lie_elsewhere_in_a_file_that_was_copied_over_it) {
  EXPECT_EQ(row(), "1");
  PlainSqlite other(folder.file("new.db"));
  other.run(
      "CREATE TABLE first (a); CREATE TABLE own (n INTEGER); INSERT INTO own VALUES (2);"
      "DROP TABLE first; PRAGMA schema_version = 1");
  fs::copy_file(folder.file("new.db"), path, fs::copy_options::overwrite_existing);
  EXPECT_EQ(row(), "2");
}

TEST_F(tables_of_a_replaced_file, may_be_in_a_file_of_another_format) {
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
TEST_F(tables_of_a_replaced_file, may_have_indexes_of_an_older_format) {
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

TEST_F(tables_of_a_replaced_file, are_those_of_the_file_that_a_link_names_now) {
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
TEST_F(tables_of_a_replaced_file, belong_to_a_file_in_use_whatever_a_link_names_now) {
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

TEST_F(tables_of_a_replaced_file, are_gone_with_a_file_that_something_else_replaces) {
  EXPECT_EQ(row(), "1");
  fs::remove(path);
  fs::create_directory(path);
  EXPECT_EQ(failureOf([&] { (void)opened(); }).number, 75);
  fs::remove(path);
  std::ofstream(path) << "no database";
  EXPECT_EQ(failureOf([&] { (void)opened(); }).number, 321);
}

}  // namespace
}  // namespace pelmora
