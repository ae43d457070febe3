// Which driver a location gets, and what its failures are.
// SPDX-License-Identifier: MIT
#include "tests/support/curve_database.h"

#include <sqlite3.h>
#include <unistd.h>

#include <filesystem>

namespace pelmora::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr auto genericFailure_ = static_cast<std::int32_t>(0x80004005U);

class open_database : public testing::Test {
 protected:
  [[nodiscard]] std::string fileWith(const std::string& name, const std::string& contents) const {
    std::ofstream(scratch.file(name), std::ios::binary) << contents;
    return scratch.file(name);
  }
  static Error errorOf(const std::string& location) {
    try {
      (void)openDatabase(location);
    } catch (const Error& error) {
      return error;
    }
    ADD_FAILURE() << location << " opened";
    return {0, "", ""};
  }

  const ScratchFolder scratch;
};

TEST_F(open_database, takes_a_curve_database) {
  createCurveDatabase(scratch.file("curves.db"));
  const ConnectionPtr connection = openDatabase(scratch.file("curves.db"));
  EXPECT_TRUE(connection->isOpen());
  EXPECT_THAT(linesOf(*connection, "select * from meter"), ElementsAre());
}

TEST_F(open_database, takes_a_file_by_its_contents_whatever_its_name) {
  createCurveDatabase(scratch.file("curves.csv"));
  const ConnectionPtr connection = openDatabase(scratch.file("curves.csv"));
  EXPECT_THAT(linesOf(*connection, "select * from series"), ElementsAre());
}

TEST_F(open_database, takes_a_stands_export) {
  const std::string file = fileWith("stand.txt", standHeader() + "\n" + standLine({"1001"}) + "\n");
  const ConnectionPtr connection = openDatabase(file);
  EXPECT_THAT(linesOf(*connection, "select JobRecordID, v12 from DataPoint"),
              ElementsAre("1001|70"));
}

TEST_F(open_database, says_that_a_file_is_missing_and_makes_none) {
  const Error error = errorOf(scratch.file("nowhere.db"));
  EXPECT_EQ(error.number(), 53);
  EXPECT_THAT(error.what(), HasSubstr(scratch.file("nowhere.db")));
  EXPECT_TRUE(fs::is_empty(scratch.path()));
}

TEST_F(open_database, says_that_an_empty_file_is_no_database) {
  const Error error = errorOf(fileWith("empty.db", ""));
  EXPECT_EQ(error.number(), 321);
  EXPECT_THAT(error.what(), HasSubstr("empty.db"));
  EXPECT_EQ(fs::file_size(scratch.file("empty.db")), 0U);
}

TEST_F(open_database, says_that_a_foreign_file_is_no_database) {
  const Error error =
      errorOf(fileWith("letter.txt", "Dear operator, this is no database at all.\n"));
  EXPECT_EQ(error.number(), 321);
  EXPECT_THAT(error.what(), HasSubstr("letter.txt"));
}

TEST_F(open_database, says_that_a_file_with_nothing_but_a_database_header_is_none) {
  const std::string header("SQLite format 3\0", 16);
  const Error error = errorOf(fileWith("torn.db", header + std::string(200, '\1')));
  EXPECT_EQ(error.number(), 321);
  EXPECT_THAT(error.what(), HasSubstr("torn.db"));
}

TEST_F(open_database, says_that_a_stands_export_with_another_header_is_none) {
  const Error error = errorOf(fileWith("stand.csv", "JobRecordID,V1,V2\n1001,1,2\n"));
  EXPECT_EQ(error.number(), 321);
  EXPECT_THAT(error.what(), HasSubstr("stand.csv"));
}

TEST_F(open_database, says_that_a_folder_is_no_database) {
  const Error error = errorOf(scratch.path().string());
  EXPECT_NE(error.number(), genericFailure_);
  EXPECT_THAT(error.what(), HasSubstr("folder"));
}

TEST_F(open_database, says_that_an_empty_location_is_none) { EXPECT_EQ(errorOf("").number(), 53); }

TEST_F(open_database, says_that_a_file_may_not_be_read) {
  if (geteuid() == 0) GTEST_SKIP() << "root may read every file";
  createCurveDatabase(scratch.file("curves.db"));
  fs::permissions(scratch.file("curves.db"), fs::perms::none);
  EXPECT_EQ(errorOf(scratch.file("curves.db")).number(), 70);
}

TEST_F(open_database, keeps_the_generic_failure_for_a_locked_database) {
  createCurveDatabase(scratch.file("curves.db"));
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(scratch.file("curves.db").c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
  EXPECT_EQ(errorOf(scratch.file("curves.db")).number(), genericFailure_);
  sqlite3_close(other);
  EXPECT_TRUE(openDatabase(scratch.file("curves.db"))->isOpen());
  for (const std::string& location :
       {std::string(), scratch.file("missing.db"), scratch.path().string(),
        fileWith("empty.db", ""), fileWith("letter.txt", "Dear Sir")})
    EXPECT_NE(errorOf(location).number(), genericFailure_) << location;
}

TEST_F(open_database, opens_a_database_without_curve_tables_and_names_the_missing_one) {
  sqlite3* stand = nullptr;
  ASSERT_EQ(sqlite3_open(scratch.file("stand.db").c_str(), &stand), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(stand, "CREATE TABLE DataPoint (JobRecordID)", nullptr, nullptr, nullptr),
            SQLITE_OK);
  sqlite3_close(stand);
  const ConnectionPtr connection = openDatabase(scratch.file("stand.db"));
  try {
    (void)linesOf(*connection, "select * from meter");
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_THAT(error.what(), HasSubstr("meter"));
    EXPECT_NE(error.number(), genericFailure_);
  }
}

TEST_F(open_database, does_not_create_over_a_file_that_exists) {
  const std::string file = fileWith("letter.txt", "keep me");
  try {
    createCurveDatabase(file);
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), 58);
  }
  EXPECT_EQ(fs::file_size(file), 7U);
}

TEST_F(open_database, creates_no_folders) {
  try {
    createCurveDatabase(scratch.file("no/such/curves.db"));
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), 75);
  }
  EXPECT_TRUE(fs::is_empty(scratch.path()));
}

}  // namespace
}  // namespace pelmora::test
