// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/parser.h"
#include "adapters/sqlite/curve_schema.h"
#include "adapters/sqlite/sqlite_renderer.h"
#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/sqlite_session.h"
#include "tests/support/curve_file.h"
#include "tests/support/look_up_statements.h"
#include "tests/support/plain_sqlite.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace pelmora {
namespace {

using test::CurveFile;
using test::failureOf;
using test::ScratchFolder;

std::vector<std::string> columnsOf(const CurveFile& file, const std::string& table) {
  const auto shape = sqlite::SqliteSession(file.path, {}).catalogue().findTable("main", table);
  std::vector<std::string> names;
  for (const auto& column : shape.value().columns) names.push_back(column.name);
  return names;
}

TEST(curve_schema, tables_and_columns_have_their_names) {
  const CurveFile file;
  using Names = std::vector<std::string>;
  EXPECT_EQ(columnsOf(file, "meter"),
            (Names{"ID", "SerialNumber", "SerialNumberAdjusted", "ReCalID"}));
  EXPECT_EQ(columnsOf(file, "masterMeterList"), (Names{"ID", "SerialNumber", "ReCalID"}));
  EXPECT_EQ(columnsOf(file, "series"), (Names{"ID", "name", "meterid"}));
  for (const char* table : {"raw1", "raw2", "raw3", "raw4", "merge", "curve"}) {
    EXPECT_EQ(columnsOf(file, table), (Names{"seriesID", "Roshko", "Strouhal"})) << table;
  }
  EXPECT_EQ(columnsOf(file, "DataFitResults"), (Names{"seriesID", "summary"}));
  EXPECT_EQ(columnsOf(file, "Fluids"), (Names{"ID", "Name"}));
  EXPECT_EQ(columnsOf(file, "Operator"), (Names{"ID", "Name"}));
  EXPECT_EQ(columnsOf(file, "CalSetup"), (Names{"ID", "MeterID", "Stand", "MeterPosition",
                                                "OperatorID", "FluidID", "DateTaken"}));
  Names points{"CalSetupID", "JobRecordID"};
  for (int i = 1; i <= 37; ++i) points.push_back("V" + std::to_string(i));
  EXPECT_EQ(columnsOf(file, "CalDataPoint"), points);
}

TEST(curve_schema, is_whole_with_every_table_and_nothing_in_the_place_of_one) {
  const auto isWholeAfter = [](const std::string& change) {
    const CurveFile file;
    test::PlainSqlite(file.path).run(change);
    return sqlite::hasCurveTables(sqlite::SqliteSession(file.path, {}).database());
  };
  EXPECT_TRUE(isWholeAfter(""));
  EXPECT_TRUE(isWholeAfter("ALTER TABLE raw1 RENAME TO other; ALTER TABLE other RENAME TO RAW1"));
  EXPECT_TRUE(isWholeAfter("CREATE VIEW more AS SELECT 1; CREATE TABLE yet_more (x)"));
  EXPECT_FALSE(isWholeAfter("DROP TABLE raw3"));
  EXPECT_FALSE(isWholeAfter("DROP TABLE Fluids; CREATE VIEW Fluids AS SELECT 1 AS ID"));
  EXPECT_FALSE(isWholeAfter("DROP TABLE Fluids; CREATE VIRTUAL TABLE Fluids USING fts5(Name)"));
}

TEST(curve_schema, a_table_that_cannot_be_read_is_an_error) {
  const CurveFile file;
  test::PlainSqlite(file.path).run(
      "INSERT INTO curve VALUES (1, 2, 3); PRAGMA writable_schema = ON; "
      "UPDATE sqlite_master SET rootpage = 9999 WHERE name = 'curve'");
  EXPECT_NE(failureOf([&] {
              (void)sqlite::hasCurveTables(sqlite::SqliteSession(file.path, {}).database());
            }).number,
            0);
}

TEST(curve_schema, every_column_may_be_null) {
  const CurveFile file;
  for (const char* statement :
       {"Insert into meter (ReCalID) VALUES(NULL)", "Insert into series (name) VALUES(NULL)",
        "Insert into raw1 (Roshko) VALUES(NULL)",
        "Insert into DataFitResults (summary) VALUES(NULL)",
        "Insert into CalSetup (Stand) VALUES(NULL)", "Insert into CalDataPoint (V1) VALUES(NULL)",
        "Insert into Fluids (Name) VALUES(NULL)",
        "Insert into masterMeterList (ReCalID) VALUES(NULL)"}) {
    EXPECT_NO_THROW(file.execute(statement)) << statement;
  }
}

TEST(curve_schema, identities_are_not_given_twice) {
  const CurveFile file;
  file.execute("Insert into series (name) VALUES('a')");
  file.execute("Delete from series");
  file.execute("Insert into series (name) VALUES('b')");
  EXPECT_EQ(file.select("Select id from series")->value(0), Value(std::int64_t{2}));
}

// The steps of the plan for a statement, one per line.
std::string planOf(sqlite::SqliteSession& session, const std::string& statement) {
  sqlite::PreparedStatement plan(
      session.database(),
      "EXPLAIN QUERY PLAN " +
          sqlite::renderForSqlite(sql::parseStatement(statement), session.catalogue()));
  std::string steps;
  while (plan.step()) {
    steps += reinterpret_cast<const char*>(sqlite3_column_text(plan.get(), 3));
    steps += '\n';
  }
  return steps;
}

TEST(curve_schema, every_look_up_and_deletion_uses_an_index) {
  const CurveFile file;
  sqlite::SqliteSession session(file.path, {});
  for (const std::string& statement : test::lookUpStatements()) {
    const std::string plan = planOf(session, statement);
    EXPECT_NE(plan.find("SEARCH"), std::string::npos) << statement << '\n' << plan;
    EXPECT_EQ(plan.find("SCAN"), std::string::npos) << statement << '\n' << plan;
    EXPECT_EQ(plan.find("AUTOMATIC"), std::string::npos) << statement << '\n' << plan;
  }
}

// What is read series by series, or block by block, comes straight from the index.
TEST(curve_schema, points_are_not_sorted_where_the_index_delivers_their_order) {
  const CurveFile file;
  sqlite::SqliteSession session(file.path, {});
  for (const char* statement :
       {"Select roshko, strouhal from raw1 where seriesID = 1", "Select * from merge",
        "Select seriesID, Roshko, Strouhal from merge where seriesID>5 AND seriesID<=205 ORDER BY "
        "seriesID",
        "Select DISTINCT seriesID from curve where seriesID>5 AND seriesID<=205",
        "Select ID from series where ID>7 ORDER BY ID"}) {
    const std::string plan = planOf(session, statement);
    EXPECT_EQ(plan.find("TEMP B-TREE"), std::string::npos) << statement << '\n' << plan;
  }
}

TEST(curve_schema, jobs_of_a_set_up_are_both_parts_of_the_index) {
  const CurveFile file;
  sqlite::SqliteSession session(file.path, {});
  const std::string plan =
      planOf(session, "Select v2 from CalDataPoint WHERE CalSetupID=1 and JobRecordID=2");
  EXPECT_NE(plan.find("(CalSetupID=? AND JobRecordID=?)"), std::string::npos) << plan;
}

std::vector<std::string> filesIn(const ScratchFolder& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    names.push_back(entry.path().filename().string());
  }
  return names;
}

TEST(curve_schema, nothing_but_the_new_file_is_left_in_the_folder) {
  const ScratchFolder folder;
  createSqliteCurveDatabase(folder.file("new ü '\".db"));
  EXPECT_EQ(filesIn(folder), std::vector<std::string>{"new ü '\".db"});
  EXPECT_TRUE(isSqliteFile(folder.file("new ü '\".db")));
}

TEST(curve_schema, a_file_that_exists_stays_as_it_is) {
  const ScratchFolder folder;
  std::ofstream(folder.file("a.db")) << "mine";
  const auto failure = failureOf([&] { createSqliteCurveDatabase(folder.file("a.db")); });
  EXPECT_NE(failure.description.find("exists already"), std::string::npos) << failure.description;
  EXPECT_NE(failure.description.find("a.db"), std::string::npos);
  EXPECT_EQ(std::filesystem::file_size(folder.file("a.db")), 4U);
  EXPECT_EQ(filesIn(folder).size(), 1U);
}

TEST(curve_schema, a_link_to_nowhere_exists_already) {
  const ScratchFolder folder;
  std::filesystem::create_symlink(folder.file("nowhere"), folder.file("a.db"));
  EXPECT_NE(failureOf([&] {
              createSqliteCurveDatabase(folder.file("a.db"));
            }).description.find("exists already"),
            std::string::npos);
  EXPECT_EQ(filesIn(folder).size(), 1U);
}

TEST(curve_schema, a_missing_folder_is_not_made) {
  const ScratchFolder folder;
  const auto failure = failureOf([&] { createSqliteCurveDatabase(folder.file("no/a.db")); });
  EXPECT_NE(failure.description.find("folder does not exist"), std::string::npos)
      << failure.description;
  EXPECT_TRUE(filesIn(folder).empty());
}

TEST(curve_schema, a_path_without_a_name_is_refused) {
  const ScratchFolder folder;
  EXPECT_NE(failureOf([] { createSqliteCurveDatabase(""); }).number, 0);
  EXPECT_NE(failureOf([&] { createSqliteCurveDatabase(folder.path().string()); }).number, 0);
  EXPECT_NE(failureOf([&] { createSqliteCurveDatabase(folder.path().string() + "/"); }).number, 0);
  EXPECT_TRUE(filesIn(folder).empty());
}

}  // namespace
}  // namespace pelmora
