// What hosts may ask of a stand and of a curve database before they import.
// SPDX-License-Identifier: MIT
#include "tests/support/curve_database.h"

#include <pelmora/curve_database.h>
#include <pelmora/stand.h>

#include <sqlite3.h>

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr auto locked = static_cast<std::int32_t>(0x80004005U);

template <class Action>
Error errorOf(Action&& action) {
  try {
    action();
  } catch (const Error& error) {
    return error;
  }
  ADD_FAILURE() << "no error";
  return {0, "", ""};
}

class looking_at_a_stand : public testing::Test {
 protected:
  ConnectionPtr standWith(const Lines& lines) {
    std::ofstream file(scratch.file("stand.csv"), std::ios::binary);
    file << standHeader() << "\n";
    for (const std::string& line : lines) file << line << "\n";
    file.close();
    return openDatabase(scratch.file("stand.csv"));
  }
  const ScratchFolder scratch;
};

TEST_F(looking_at_a_stand, lists_each_job_once_in_ascending_order) {
  const auto stand = standWith({standLine({"20"}), standLine({"3"}), standLine({"20"})});
  EXPECT_THAT(standJobs(stand), ElementsAre("3", "20"));
}

TEST_F(looking_at_a_stand, reads_the_points_of_one_job_in_their_order) {
  const auto stand =
      standWith({standLine({"7", 1, 2.5}), standLine({"8", 1, 9}), standLine({"7", 1, 3.5})});
  const ValueTable points = standPoints(stand, "7");
  ASSERT_EQ(points.columns(), 37U);
  ASSERT_EQ(points.rows(), 2U);
  EXPECT_EQ(points(1, 0), Value(2.5));
  EXPECT_EQ(points(1, 1), Value(3.5));
}

TEST_F(looking_at_a_stand, has_no_points_of_an_unknown_job) {
  EXPECT_EQ(standPoints(standWith({standLine({"7"})}), "8").rows(), 0U);
}

TEST_F(looking_at_a_stand, takes_no_statement_for_a_job) {
  const auto stand = standWith({standLine({"7"})});
  EXPECT_EQ(errorOf([&] { (void)standPoints(stand, "7 or 1=1"); }).number(), 13);
  EXPECT_EQ(errorOf([&] { (void)standPoints(stand, ""); }).number(), 13);
}

TEST_F(looking_at_a_stand, needs_a_connection) {
  EXPECT_EQ(errorOf([] { (void)standJobs(nullptr); }).number(), 91);
}

class looking_at_curves : public testing::Test {
 protected:
  looking_at_curves() {
    createCurveDatabase(path);
    curves = openDatabase(path);
  }
  const ScratchFolder scratch;
  const std::string path = scratch.file("curves.db");
  ConnectionPtr curves;
};

TEST_F(looking_at_curves, finds_no_set_up_of_a_new_meter) {
  EXPECT_THAT(calSetups(curves, 1), IsEmpty());
}

TEST_F(looking_at_curves, tells_set_ups_by_stand_and_id_with_their_names) {
  for (const char* statement :
       {"Insert into Fluids (Name) VALUES ('water')", "Insert into Fluids (Name) VALUES ('oil')",
        "Insert into Operator (Name) VALUES ('Ada')",
        "Insert into Calsetup (meterID,Stand,MeterPosition,OperatorID,FluidID,DateTaken) "
        "VALUES(1,2,5,1,1,#1/2/2030#)",
        "Insert into Calsetup (meterID,Stand,FluidID) VALUES(1,1,2)",
        "Insert into Calsetup (meterID,Stand,FluidID) VALUES(9,0,2)",
        "Insert into CalDataPoint (CalSetupID, JobRecordID) VALUES(1,12)",
        "Insert into CalDataPoint (CalSetupID, JobRecordID) VALUES(1,12)",
        "Insert into CalDataPoint (CalSetupID, JobRecordID) VALUES(1,3)"}) {
    curves->execute(statement);
  }
  const auto setups = calSetups(curves, 1);
  ASSERT_EQ(setups.size(), 2U);
  EXPECT_EQ(setups[0].Fluid, "oil");
  EXPECT_EQ(setups[0].Operator, "");
  EXPECT_EQ(setups[0].Points, 0U);
  EXPECT_EQ(setups[1].Fluid, "water");
  EXPECT_EQ(setups[1].Operator, "Ada");
  EXPECT_EQ(setups[1].Position, 5);
  EXPECT_EQ(setups[1].Points, 3U);
  EXPECT_THAT(setups[1].JobRecordIDs, ElementsAre("3", "12"));
}

TEST_F(looking_at_curves, names_a_table_that_is_missing) {
  requireCurveTables(curves);
  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &database), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(database, "DROP TABLE raw3", nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(database);
  EXPECT_THAT(errorOf([&] { requireCurveTables(curves); }).what(), HasSubstr("raw3"));
}

TEST_F(looking_at_curves, says_that_another_user_holds_the_lock) {
  requireWritable(curves);
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
  EXPECT_EQ(errorOf([&] { requireWritable(curves); }).number(), locked);
  sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
  sqlite3_close(other);
  EXPECT_NO_THROW(requireWritable(curves));
}

TEST_F(looking_at_curves, leaves_every_row_where_it_is) {
  curves->execute("Insert into CalDataPoint (CalSetupID, JobRecordID) VALUES(1,3)");
  requireWritable(curves);
  EXPECT_THAT(linesOf(*curves, "select CalSetupID from CalDataPoint"), ElementsAre("1"));
}

}  // namespace
}  // namespace pelmora::test
