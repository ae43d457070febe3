// SPDX-License-Identifier: MIT
#include "base/run_time_error.h"
#include "tests/support/curve_file.h"
#include "tests/support/plain_sqlite.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace pelmora {
namespace {

using test::CurveFile;
using test::failureOf;
using test::ScratchFolder;

// What open() says of `path`; expects error `number` and that it names the path.
std::string refusal(const std::string& path, RunTimeError number) {
  const auto connection = sqliteConnection(path);
  const auto failure = failureOf([&] { connection->open(); });
  EXPECT_EQ(failure.number, static_cast<std::int32_t>(number)) << path;
  EXPECT_NE(failure.description.find("'" + path + "'"), std::string::npos) << failure.description;
  EXPECT_FALSE(connection->isOpen());
  return failure.description;
}

TEST(sqlite_open, a_missing_file_is_named_and_not_made) {
  const ScratchFolder folder;
  const std::string path = folder.file("no.db");
  EXPECT_EQ(refusal(path, RunTimeError::fileNotFound).find("Could not find file"), 0U);
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_EQ(refusal(folder.file("no folder/no.db"), RunTimeError::fileNotFound)
                .find("Could not find file"),
            0U);
  EXPECT_EQ(refusal("", RunTimeError::fileNotFound).find("Could not find file"), 0U);
}

TEST(sqlite_open, a_folder_is_no_database) {
  const ScratchFolder folder;
  EXPECT_NE(refusal(folder.path().string(), RunTimeError::pathAccess).find("folder"),
            std::string::npos);
}

TEST(sqlite_open, an_empty_file_is_no_database) {
  const ScratchFolder folder;
  const std::string path = folder.file("empty.db");
  std::ofstream{path};
  EXPECT_NE(refusal(path, RunTimeError::invalidFileFormat).find("empty"), std::string::npos);
  EXPECT_EQ(std::filesystem::file_size(path), 0U);
  EXPECT_FALSE(isSqliteFile(path));
}

TEST(sqlite_open, another_format_is_no_database) {
  const ScratchFolder folder;
  const std::string path = folder.file("letter.txt");
  std::ofstream(path) << "Dear Sir or Madam, this is no database.";
  EXPECT_NE(refusal(path, RunTimeError::invalidFileFormat).find("not an SQLite database"),
            std::string::npos);
  EXPECT_FALSE(isSqliteFile(path));
}

TEST(sqlite_open, a_damaged_database_is_told_as_such) {
  const CurveFile file;
  file.connection->close();
  {
    std::fstream bytes(file.path, std::ios::in | std::ios::out | std::ios::binary);
    bytes.seekp(100);
    bytes << std::string(900, '\x7f');
  }
  const auto connection = sqliteConnection(file.path);
  const auto failure = failureOf([&] { connection->open(); });
  EXPECT_EQ(failure.number, static_cast<std::int32_t>(RunTimeError::invalidFileFormat));
  EXPECT_NE(failure.description.find("damaged"), std::string::npos) << failure.description;
}

TEST(sqlite_open, a_file_that_may_not_be_read) {
  if (geteuid() == 0) GTEST_SKIP() << "the superuser may read everything";
  const CurveFile file;
  file.connection->close();
  std::filesystem::permissions(file.path, std::filesystem::perms::none);
  EXPECT_NE(refusal(file.path, RunTimeError::permissionDenied).find("permissions"),
            std::string::npos);
}

TEST(sqlite_open, a_file_that_may_only_be_read_can_be_read) {
  if (geteuid() == 0) GTEST_SKIP() << "the superuser may write everything";
  const CurveFile file;
  file.connection->close();
  std::filesystem::permissions(file.path, std::filesystem::perms::owner_read);
  file.connection->open();
  EXPECT_EQ(file.count("meter"), 0);
  const auto failure = failureOf([&] { file.execute("Insert into Fluids (Name) VALUES ('a')"); });
  EXPECT_EQ(failure.description.find("Operation must use an updateable query."), 0U)
      << failure.description;
  EXPECT_NE(failure.number, genericFailure);
}

TEST(sqlite_open, every_character_of_a_path_counts) {
  const ScratchFolder folder;
  std::filesystem::create_directory(folder.path() / "Prüf stand's \"1\"");
  for (const char* name :
       {"Prüf stand's \"1\"/a b.db", "%41?mode=ro.db", "#1.db", "файл.db", "no extension"}) {
    const std::string path = folder.file(name);
    createSqliteCurveDatabase(path);
    const auto connection = sqliteConnection(path);
    connection->open();
    EXPECT_NO_THROW(connection->execute("Insert into Fluids (Name) VALUES ('a')")) << name;
    EXPECT_TRUE(std::filesystem::exists(path)) << name;
  }
}

TEST(sqlite_open, names_that_sqlite_itself_takes_otherwise_are_files) {
  const ScratchFolder folder;
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  for (const char* name : {":memory:", "file:a.db"}) {
    EXPECT_EQ(refusal(name, RunTimeError::fileNotFound).find("Could not find file"), 0U);
    createSqliteCurveDatabase(name);
    const auto connection = sqliteConnection(name);
    connection->open();
    connection->execute("Insert into Fluids (Name) VALUES ('a')");
    EXPECT_TRUE(std::filesystem::exists(folder.path() / name)) << name;
  }
  std::filesystem::current_path(before);
}

TEST(sqlite_open, a_closed_connection_runs_nothing) {
  const CurveFile file;
  const auto rows = file.select("Select * from Fluids");
  file.connection->close();
  EXPECT_FALSE(file.connection->isOpen());
  EXPECT_EQ(failureOf([&] { file.execute("Delete from Fluids"); }).number, 3704);
  EXPECT_EQ(failureOf([&] { (void)file.select("Select * from Fluids"); }).number, 3704);
  EXPECT_EQ(failureOf([&] { rows->requery(); }).number, 3709);
}

TEST(sqlite_open, a_connection_can_be_opened_again) {
  const CurveFile file;
  EXPECT_EQ(failureOf([&] { file.connection->open(); }).number, 3705);
  file.connection->close();
  file.connection->close();
  file.connection->open();
  EXPECT_EQ(file.count("meter"), 0);
}

TEST(sqlite_open, a_database_without_curve_tables_opens) {
  const CurveFile file;
  test::PlainSqlite(file.path).run("DROP TABLE meter");
  EXPECT_EQ(
      failureOf([&] {
        (void)file.count("meter");
      }).description.find("The database engine cannot find the input table or query 'meter'."),
      0U);
}

}  // namespace
}  // namespace pelmora
