// A curve database from an Access file.
// SPDX-License-Identifier: MIT
#include "base/file_text.h"
#include "store/curve_schema.h"
#include "tests/support/curve_database.h"
#include "tests/support/places.h"

#include <pelmora/calibration/database.h>
#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/import_access.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace pelmora::test {
namespace {

namespace cal = pelmora::calibration;
using testing::HasSubstr;
using testing::IsEmpty;

std::string oldFile(const std::string& name) {
  return sourceFolder() + "/tests/data/access/" + name;
}

constexpr std::size_t pageSize = 4096;
constexpr char definitionOfRaw1 = 60, definitionOfTheListOfTables = 2;

// Where the pages begin that hold the rows of the table whose definition is on page `definition`.
std::vector<std::size_t> rowPages(const std::string& bytes, char definition) {
  std::vector<std::size_t> pages;
  for (std::size_t at = 0; at < bytes.size(); at += pageSize) {
    if (bytes.compare(at, 2, "\x01\x01") == 0 &&
        bytes.compare(at + 4, 4, std::string{definition, '\0', '\0', '\0'}) == 0)
      pages.push_back(at);
  }
  return pages;
}

void zeroPage(std::string& bytes, std::size_t at) {
  std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), pageSize, '\0');
}

class import_access : public testing::Test {
 protected:
  const ScratchFolder scratch;
  const std::string curves = scratch.file("curves.db");
};

TEST_F(import_access, copies_every_row_with_its_ids) {
  const cal::ProofSheet sheet = cal::importAccess(oldFile("curves.mdb"), curves);
  EXPECT_TRUE(sheet.isComplete());
  EXPECT_THAT(sheet.missing, IsEmpty());
  EXPECT_EQ(sheet.tables.size(), curveTables().size());
  const ConnectionPtr from = openDatabase(oldFile("curves.mdb"));
  const ConnectionPtr to = openDatabase(curves);
  for (const SchemaTable& table : curveTables()) {
    EXPECT_EQ(linesOf(*to, "select * from " + table.Name),
              linesOf(*from, "select * from " + table.Name))
        << table.Name;
  }
}

TEST_F(import_access, counts_rows_as_the_file_and_the_new_database_do) {
  const cal::ProofSheet sheet = cal::importAccess(oldFile("curves.mdb"), curves);
  std::map<std::string, std::uint64_t> rows;
  for (const cal::ProofTable& table : sheet.tables) {
    EXPECT_EQ(table.expected, table.read) << table.name;
    EXPECT_EQ(table.written, table.read) << table.name;
    EXPECT_EQ(table.checksumWritten, table.checksumRead) << table.name;
    rows[table.name] = table.written;
  }
  EXPECT_EQ(rows["meter"], 5U);
  EXPECT_EQ(rows["raw1"], 173U);
  EXPECT_EQ(rows["raw3"], 0U);
  EXPECT_EQ(rows["CalDataPoint"], 83U);
}

TEST_F(import_access, the_copied_database_can_be_used_and_changed) {
  (void)cal::importAccess(oldFile("curves.mdb"), curves);
  cal::Database lab = cal::open(curves);
  const cal::Meter meter = lab.registerMeter("NEW-1");
  EXPECT_GT(meter.id, 5);
  EXPECT_EQ(linesOf(*lab.connection(), "select seriesID from curve where seriesID=2").size(), 21U);
}

TEST_F(import_access, lists_what_a_damaged_file_has_lost) {
  std::string bytes = readWholeFile(oldFile("curves.mdb"));
  const std::vector<std::size_t> pages = rowPages(bytes, definitionOfRaw1);
  ASSERT_FALSE(pages.empty());
  zeroPage(bytes, pages.front());
  std::ofstream(scratch.file("damaged.mdb"), std::ios::binary) << bytes;
  const cal::ProofSheet sheet = cal::importAccess(scratch.file("damaged.mdb"), curves);
  EXPECT_FALSE(sheet.isComplete());
  ASSERT_EQ(sheet.missing.size(), 2U);
  EXPECT_EQ(sheet.missing[0].table, "raw1");
  EXPECT_THAT(sheet.missing[0].reason, HasSubstr("is damaged"));
  EXPECT_THAT(sheet.missing[1].reason, HasSubstr("the file counts 173 rows"));
  ASSERT_EQ(sheet.tables.size(), curveTables().size());
  for (const cal::ProofTable& table : sheet.tables)
    EXPECT_EQ(table.isWhole(), table.name != "raw1") << table.name;
}

TEST_F(import_access, shows_rows_that_belong_to_nothing_because_of_a_changed_id) {
  std::string bytes = readWholeFile(oldFile("curves.mdb"));
  const std::vector<std::size_t> pages = rowPages(bytes, definitionOfRaw1);
  ASSERT_FALSE(pages.empty());
  // The first row of the first page: its number of columns, then seriesID.
  const std::size_t at = pages.front();
  const std::size_t row = at + static_cast<unsigned char>(bytes[at + 14]) +
                          256U * static_cast<unsigned char>(bytes[at + 15]);
  ASSERT_EQ(bytes[row], 3);
  bytes[row + 3] = 7;
  std::ofstream(scratch.file("damaged.mdb"), std::ios::binary) << bytes;
  const auto problemsOf = [&](const std::string& file, const std::string& database) {
    const cal::ProofSheet sheet = cal::importAccess(file, scratch.file(database));
    std::vector<std::string> ids;
    for (const cal::Finding& problem : sheet.problems) ids.push_back(problem.id);
    return ids;
  };
  EXPECT_THAT(problemsOf(scratch.file("damaged.mdb"), "a.db"), testing::Contains("orphaned-rows"));
  EXPECT_THAT(problemsOf(oldFile("curves.mdb"), "b.db"),
              testing::Not(testing::Contains("orphaned-rows")));
}

TEST_F(import_access, leaves_no_file_behind_where_it_fails) {
  EXPECT_THROW((void)cal::importAccess(oldFile("stand.mdb"), curves), cal::BadData);
  EXPECT_THROW((void)cal::importAccess(oldFile("README.md"), curves), cal::Damaged);
  EXPECT_THROW((void)cal::importAccess(scratch.file("nowhere.mdb"), curves), cal::NotFound);
  EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));
}

TEST_F(import_access, counts_the_tables_of_a_file_without_a_curve_database) {
  try {
    (void)cal::importAccess(oldFile("types.mdb"), curves);
    ADD_FAILURE() << "imported";
  } catch (const cal::NoCurveDatabase& other) {
    // As the program that wrote the file counted them; see the README of the data.
    std::map<std::string, std::uint64_t> rows;
    for (const cal::ProofTable& table : other.sheet().otherTables) {
      EXPECT_EQ(table.expected, table.read) << table.name;
      rows[table.name] = table.read;
    }
    EXPECT_EQ(rows, (std::map<std::string, std::uint64_t>{
                        {"AllTypes", 7}, {"Memos", 48}, {"Churn", 320}, {"order by", 2}}));
    EXPECT_FALSE(other.sheet().isComplete());
  }
}

TEST_F(import_access, damage_that_hides_all_tables_is_named) {
  std::string bytes = readWholeFile(oldFile("curves.mdb"));
  const std::vector<std::size_t> pages = rowPages(bytes, definitionOfTheListOfTables);
  ASSERT_FALSE(pages.empty());
  for (const std::size_t at : pages) zeroPage(bytes, at);
  std::ofstream(scratch.file("damaged.mdb"), std::ios::binary) << bytes;
  try {
    (void)cal::importAccess(scratch.file("damaged.mdb"), curves);
    ADD_FAILURE() << "imported";
  } catch (const cal::NoCurveDatabase& damaged) {
    EXPECT_THAT(damaged.what(), HasSubstr("no curve database can be read"));
    EXPECT_THAT(damaged.what(), HasSubstr("the list of tables"));
    EXPECT_THAT(damaged.remedy(), HasSubstr("repair it in Access"));
  }
}

TEST_F(import_access, does_not_mix_two_databases) {
  (void)cal::importAccess(oldFile("curves.mdb"), curves);
  EXPECT_THROW((void)cal::importAccess(oldFile("curves.mdb"), curves), cal::Exists);
  EXPECT_EQ(linesOf(*openDatabase(curves), "select ID from meter").size(), 5U);
}

TEST_F(import_access, fills_an_empty_curve_database) {
  createCurveDatabase(curves);
  EXPECT_TRUE(cal::importAccess(oldFile("curves.mdb"), curves).isComplete());
}

}  // namespace
}  // namespace pelmora::test
