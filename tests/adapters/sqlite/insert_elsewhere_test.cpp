// INSERT ... IN 'file' SELECT: from the database of the connection into another file.
// SPDX-License-Identifier: MIT
#include "base/run_time_error.h"
#include "tests/support/curve_file.h"
#include "tests/support/plain_sqlite.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace pelmora {
namespace {

using test::CurveFile;
using test::failureOf;
using test::PlainSqlite;

// A stand's own database with three points of jobs 1001 and 1002.
struct StandFile {
  explicit StandFile(const std::string& jobType = "INTEGER") : path(folder.file("stand.db")) {
    PlainSqlite database(path);
    database.run("CREATE TABLE DataPoint (JobRecordID " + jobType + ", V1 REAL, V2 REAL)");
    database.run("INSERT INTO DataPoint VALUES (1001, 1, 2), (1001, 3, 4), (1002, 5, 0)");
    connection = sqliteConnection(path);
    connection->open();
  }

  test::ScratchFolder folder;
  std::string path;
  ConnectionPtr connection;
};

std::string copyTo(const std::string& path, const std::string& job) {
  return "INSERT INTO CalDataPoint ( CalSetupID, JobRecordID, V1, V2 ) IN '" + path +
         "'SELECT 7 as CalSetupID, JobRecordID, V1, V2 FROM DataPoint WHERE (((JobRecordID)=" +
         job + "));";
}

TEST(insert_elsewhere, the_rows_of_one_job_are_copied) {
  const CurveFile curves;
  const StandFile stand;
  stand.connection->execute(copyTo(curves.path, "1001"));
  const auto rows = curves.select("Select * from CalDataPoint where CalSetupID=7");
  ASSERT_EQ(rows->recordCount(), 2);
  EXPECT_EQ(rows->value("JobRecordID"), Value(std::int64_t{1001}));
  EXPECT_EQ(rows->value("V2"), Value(2.0));
}

TEST(insert_elsewhere, a_job_is_found_whether_the_stand_keeps_numbers_or_texts) {
  for (const char* type : {"INTEGER", "TEXT", "VARCHAR(20)", "NUMERIC", ""}) {
    const CurveFile curves;
    const StandFile stand(type);
    stand.connection->execute(copyTo(curves.path, "1001"));
    stand.connection->execute(copyTo(curves.path, "'1002'"));
    EXPECT_EQ(curves.count("CalDataPoint"), 3) << type;
    EXPECT_EQ(curves.select("Select v1 from CalDataPoint where CalSetupID=7 and JobRecordID=1001")
                  ->recordCount(),
              2)
        << type;
  }
}

TEST(insert_elsewhere, the_file_may_be_the_database_itself) {
  const CurveFile curves;
  PlainSqlite(curves.path)
      .run("CREATE TABLE DataPoint (JobRecordID, V1, V2); INSERT INTO DataPoint VALUES (1, 2, 3)");
  std::filesystem::create_symlink(curves.path, curves.folder.file("link.db"));
  curves.execute(copyTo(curves.path, "1"));
  curves.execute(copyTo(curves.folder.file("link.db"), "1"));
  EXPECT_EQ(curves.count("CalDataPoint"), 2);
}

TEST(insert_elsewhere, paths_need_no_care_but_doubled_quotes) {
  const CurveFile curves;
  const StandFile stand;
  for (const char* name : {"a b.db", "ü\"x\".db", "%20?.db"}) {
    std::filesystem::copy_file(curves.path, curves.folder.file(name));
    EXPECT_NO_THROW(stand.connection->execute(copyTo(curves.folder.file(name), "1001"))) << name;
  }
  std::filesystem::copy_file(curves.path, curves.folder.file("it's.db"));
  EXPECT_NO_THROW(stand.connection->execute(copyTo(curves.folder.file("it''s.db"), "1001")));
  EXPECT_NE(failureOf([&] {
              stand.connection->execute(copyTo(curves.folder.file("it's.db"), "1001"));
            }).number,
            0);
}

TEST(insert_elsewhere, a_file_that_is_missing_or_no_database_is_named_and_not_waited_for) {
  const CurveFile curves;
  const StandFile stand;
  std::ofstream(curves.folder.file("text.db")) << "not a database at all";
  for (const char* name : {"missing.db", "text.db"}) {
    const std::string path = curves.folder.file(name);
    const auto failure = failureOf([&] { stand.connection->execute(copyTo(path, "1001")); });
    EXPECT_NE(failure.number, 0);
    EXPECT_NE(failure.number, genericFailure);
    EXPECT_NE(failure.description.find(path), std::string::npos) << failure.description;
  }
  EXPECT_FALSE(std::filesystem::exists(curves.folder.file("missing.db")));
}

TEST(insert_elsewhere, a_failure_half_way_leaves_nothing_and_the_connection_usable) {
  const CurveFile curves;
  const StandFile stand;
  const std::string statement = "INSERT INTO CalDataPoint ( CalSetupID, V1 ) IN '" + curves.path +
                                "'SELECT 7 as CalSetupID, V1/V2 FROM DataPoint";
  EXPECT_EQ(failureOf([&] { stand.connection->execute(statement); }).number, 11);
  EXPECT_EQ(curves.count("CalDataPoint"), 0);
  stand.connection->execute(copyTo(curves.path, "1002"));
  EXPECT_EQ(curves.count("CalDataPoint"), 1);
}

TEST(insert_elsewhere, a_missing_output_table_is_named) {
  const CurveFile curves;
  const StandFile stand;
  PlainSqlite(curves.path).run("DROP TABLE CalDataPoint");
  EXPECT_EQ(failureOf([&] {
              stand.connection->execute(copyTo(curves.path, "1001"));
            }).description.find("Could not find output table 'CalDataPoint'"),
            0U);
  EXPECT_EQ(failureOf([&] {
              curves.execute(copyTo(stand.path, "1001"));
            }).description.find("Could not find output table"),
            0U);
}

TEST(insert_elsewhere, the_copy_of_a_second_job_is_a_syntax_error) {
  const CurveFile curves;
  const StandFile stand;
  EXPECT_EQ(failureOf([&] {
              stand.connection->execute(
                  "INSERT INTO CalDataPoint IN '" + curves.path +
                  "' 7, (Select * from DataPoint Where ((DataPoint.JobRecordID=1002)));");
            }).description,
            "Syntax error in INSERT INTO statement.");
}

TEST(insert_elsewhere, no_journal_stays_behind) {
  const CurveFile curves;
  const StandFile stand;
  stand.connection->execute(copyTo(curves.path, "1001"));
  EXPECT_FALSE(std::filesystem::exists(curves.path + "-journal"));
  EXPECT_FALSE(std::filesystem::exists(stand.path + "-journal"));
}

}  // namespace
}  // namespace pelmora
