// Set-ups and copies on a real curve database and a stand's export.
// SPDX-License-Identifier: MIT
#include "component/stand_copy.h"
#include "tests/support/curve_database.h"

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class set_up : public CurveDatabaseTest {
 protected:
  std::int32_t set(const std::string& fluid, std::string operatorName = "Ada",
                   std::int16_t stand = 1) {
    return setCalSetup(context, 7, stand, 2, operatorName, fluid, curves());
  }
};

TEST_F(set_up, is_made_with_its_fluid_and_operator) {
  const std::int32_t id = set("Oil");
  EXPECT_THAT(lines("select ID, MeterID, Stand, MeterPosition from CalSetup"),
              ElementsAre(std::to_string(id) + "|7|1|2"));
  EXPECT_THAT(
      lines("select Fluids.Name from CalSetup left join Fluids on CalSetup.FluidID = Fluids.ID"),
      ElementsAre("Oil"));
  EXPECT_THAT(lines("select Operator.Name from CalSetup left join Operator on CalSetup.OperatorID "
                    "= Operator.ID"),
              ElementsAre("Ada"));
}

TEST_F(set_up, is_dated_today) {
  (void)set("Oil");
  const std::time_t now = std::time(nullptr);
  std::array<char, 32> today{};
  std::strftime(today.data(), today.size(), "#%m/%d/%Y#", std::localtime(&now));
  EXPECT_THAT(lines(std::string("select ID from CalSetup where DateTaken = ") + today.data()),
              SizeIs(1));
}

TEST_F(set_up, is_used_again_whatever_stand_and_operator_say) {
  const std::int32_t first = set("Oil");
  EXPECT_EQ(set("oil", "Grace", 9), first);
  EXPECT_THAT(lines("select Stand from CalSetup"), ElementsAre("1"));
  EXPECT_THAT(lines("select Name from Operator"), ElementsAre("Ada"));
}

TEST_F(set_up, shares_fluids_and_operators_with_others) {
  (void)set("Oil");
  (void)set("Water");
  std::string ada = "ada";
  (void)setCalSetup(context, 8, 1, 2, ada, "water", curves());
  EXPECT_THAT(lines("select Name from Fluids order by ID"), ElementsAre("Oil", "Water"));
  EXPECT_THAT(lines("select Name from Operator"), ElementsAre("Ada"));
  EXPECT_THAT(lines("select MeterID from CalSetup order by ID"), ElementsAre("7", "7", "8"));
}

TEST_F(set_up, without_an_operator_has_an_Unknown_one) {
  std::string none;
  (void)setCalSetup(context, 7, 1, 2, none, "Oil", curves());
  EXPECT_EQ(none, "Unknown");
  EXPECT_THAT(lines("select Name from Operator"), ElementsAre("Unknown"));
}

TEST_F(set_up, breaks_on_a_quote) {
  EXPECT_EQ(set("O'il"), 0);
  EXPECT_THAT(lines("select * from Fluids"), IsEmpty());
  EXPECT_EQ(set("Oil", "O'Hara"), 0);
  EXPECT_THAT(lines("select * from CalSetup"), IsEmpty());
  EXPECT_THAT(boxes, SizeIs(2));
  EXPECT_THAT(boxes, testing::Each(errorBoxOf("Error in RawData:setCalSetup")));
}

class copy_of_stand_data : public CurveDatabaseTest {
 protected:
  bool copy(const ConnectionPtr& from, const std::string& first, const std::string& second = "",
            std::int32_t setup = 5) {
    return copyCaldb(context, setup, first, second, from, curveConnection);
  }
  Lines copied(const std::string& columns = "CalSetupID, JobRecordID, V4") {
    return lines("select " + columns + " from CalDataPoint order by CalSetupID, V4");
  }

  const ConnectionPtr curveConnection = curves();
  const std::vector<StandRow> rows{
      {.job = "1001", .v4 = 10}, {.job = "1002", .v4 = 20}, {.job = "1001", .v4 = 30.25}};
};

TEST_F(copy_of_stand_data, takes_the_rows_of_one_job_under_the_set_up) {
  EXPECT_TRUE(copy(stand(rows), "1001"));
  EXPECT_THAT(copied(), ElementsAre("5|1001|10", "5|1001|30.25"));
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(copy_of_stand_data, takes_every_column_to_its_own_place) {
  std::string line = "1001";
  std::string columns = "JobRecordID";
  std::string expected = "1001";
  for (int i = 1; i <= 37; ++i) {
    line += "," + std::to_string(100 + i) + ".5";
    columns += ", V" + std::to_string(i);
    expected += "|" + std::to_string(100 + i) + ".5";
  }
  std::ofstream(scratch.file("stand.csv")) << standHeader() << "\n" << line << "\n";
  EXPECT_TRUE(copy(openDatabase(scratch.file("stand.csv")), "1001"));
  EXPECT_THAT(copied(columns), ElementsAre(expected));
}

TEST_F(copy_of_stand_data, replaces_the_points_of_that_set_up_alone) {
  EXPECT_TRUE(copy(stand(rows), "1001", "", 4));
  EXPECT_TRUE(copy(stand(rows), "1001"));
  EXPECT_TRUE(copy(stand(rows), "1002"));
  EXPECT_THAT(copied(), ElementsAre("4|1001|10", "4|1001|30.25", "5|1002|20"));
}

TEST_F(copy_of_stand_data, of_an_unknown_job_leaves_the_set_up_empty) {
  EXPECT_TRUE(copy(stand(rows), "1001"));
  EXPECT_TRUE(copy(stand(rows), "7777"));
  EXPECT_THAT(copied(), IsEmpty());
}

TEST_F(copy_of_stand_data, closes_the_stand_and_leaves_the_curve_database_open) {
  const ConnectionPtr from = stand(rows);
  EXPECT_TRUE(copy(from, "1001"));
  EXPECT_FALSE(from->isOpen());
  EXPECT_TRUE(curveConnection->isOpen());
}

TEST_F(copy_of_stand_data, opens_a_closed_stand) {
  const ConnectionPtr from = stand(rows);
  from->close();
  EXPECT_TRUE(copy(from, "1001"));
  EXPECT_THAT(copied(), SizeIs(2));
}

TEST_F(copy_of_stand_data, with_a_second_job_ends_in_the_box_after_the_first_job) {
  EXPECT_FALSE(copy(stand(rows), "1001", "1002"));
  EXPECT_THAT(copied(), ElementsAre("5|1001|10", "5|1001|30.25"));
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:copyCaldb",
                                          "Syntax error in INSERT INTO statement.")));
}

TEST_F(copy_of_stand_data, that_fails_has_removed_the_old_points) {
  EXPECT_TRUE(copy(stand(rows), "1001"));
  EXPECT_FALSE(copy(stand(rows), "10o1"));
  EXPECT_THAT(copied(), IsEmpty());
  EXPECT_THAT(boxes, ElementsAre(errorBoxOf("Error in RawData:copyCaldb")));
}

TEST_F(copy_of_stand_data, into_a_path_with_a_quote_ends_in_the_box) {
  shared.location = splitLocation(scratch.file("operator's.db"));
  EXPECT_FALSE(copy(stand(rows), "1001"));
  EXPECT_THAT(boxes, ElementsAre(errorBoxOf("Error in RawData:copyCaldb")));
}

TEST_F(copy_of_stand_data, into_a_missing_file_ends_in_the_box_and_makes_none) {
  shared.location = splitLocation(scratch.file("nowhere.db"));
  EXPECT_FALSE(copy(stand(rows), "1001"));
  ASSERT_THAT(boxes, ElementsAre(errorBoxOf("Error in RawData:copyCaldb")));
  EXPECT_THAT(boxes[0].text, testing::HasSubstr("nowhere.db"));
  EXPECT_FALSE(std::filesystem::exists(scratch.file("nowhere.db")));
  EXPECT_THAT(statusTexts(), IsEmpty());
}

TEST_F(copy_of_stand_data, deletes_where_it_is_connected_and_inserts_at_the_shared_location) {
  EXPECT_TRUE(copy(stand(rows), "1001"));
  createCurveDatabase(scratch.file("other.db"));
  shared.location = splitLocation(scratch.file("other.db"));
  EXPECT_TRUE(copy(stand(rows), "1002"));
  EXPECT_THAT(copied(), IsEmpty());
  EXPECT_THAT(linesOf(*openDatabase(scratch.file("other.db")), "select V4 from CalDataPoint"),
              ElementsAre("20"));
}

}  // namespace
}  // namespace pelmora::test
