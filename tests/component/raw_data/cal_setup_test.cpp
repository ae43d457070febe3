// Statements and failures of setCalSetup.
// SPDX-License-Identifier: MIT
#include "component/stand_copy.h"
#include "tests/support/operation_test.h"

#include <ctime>

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string findSetup =
    "SELECT CalSetup.* FROM Fluids RIGHT JOIN CalSetup ON Fluids.ID = CalSetup.FluidID WHERE "
    "(((Fluids.Name)='Oil') AND ((CalSetup.MeterID)=7));";

std::string today() {
  const std::time_t now = std::time(nullptr);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%m/%d/%Y", std::localtime(&now));
  return text.data();
}

class setCalSetupOf : public ScriptedOperationTest {
 protected:
  std::int32_t set() {
    return setCalSetup(context, 7, 3, 2, operatorName, "Oil", openConnection());
  }
  static Rows id(std::int64_t number) { return {{"ID"}, {{number}}}; }

  std::string operatorName = "Ada";
};

TEST_F(setCalSetupOf, a_known_meter_and_fluid_is_their_first_set_up) {
  script->answer(findSetup,
                 {{"ID", "MeterID"},
                  {{std::int64_t{5}, std::int64_t{7}}, {std::int64_t{6}, std::int64_t{7}}}});
  EXPECT_EQ(set(), 5);
  EXPECT_THAT(log(), ElementsAre("read " + findSetup));
}

TEST_F(setCalSetupOf, a_known_set_up_leaves_an_empty_operator_name_alone) {
  script->answer(findSetup, id(5));
  operatorName.clear();
  (void)set();
  EXPECT_EQ(operatorName, "");
}

TEST_F(setCalSetupOf, a_known_fluid_and_operator_makes_the_set_up_row) {
  script->answer(findSetup, {{"ID"}, {}});
  script->answer(findSetup, id(5));
  script->answer("Select * from fluids where name = 'Oil'", id(31));
  script->answer("Select * from Operator where name = 'Ada'", id(41));
  EXPECT_EQ(set(), 5);
  EXPECT_THAT(log(),
              ElementsAre("read " + findSetup, "read Select * from fluids where name = 'Oil'",
                          "read Select * from Operator where name = 'Ada'",
                          "execute Insert into Calsetup "
                          "(meterID,Stand,MeterPosition,OperatorID,FluidID,DateTaken) "
                          "VALUES(7,3,2,41,31,#" +
                              today() + "#)",
                          "requery"));
}

TEST_F(setCalSetupOf, an_unknown_fluid_and_operator_adds_their_rows_first) {
  for (const std::string& statement :
       {findSetup, std::string("Select * from fluids where name = 'Oil'"),
        std::string("Select * from Operator where name = 'Ada'")}) {
    script->answer(statement, {{"ID"}, {}});
    script->answer(statement, id(9));
  }
  EXPECT_EQ(set(), 9);
  EXPECT_THAT(log(),
              ElementsAre("read " + findSetup, "read Select * from fluids where name = 'Oil'",
                          "execute Insert into Fluids (Name) VALUES ('Oil')", "requery",
                          "read Select * from Operator where name = 'Ada'",
                          "execute Insert into Operator (Name) VALUES ('Ada')", "requery",
                          testing::StartsWith("execute Insert into Calsetup "), "requery"));
}

TEST_F(setCalSetupOf, an_empty_operator_name_is_Unknown_also_for_the_caller) {
  script->answer("Select * from fluids where name = 'Oil'", id(31));
  operatorName.clear();
  (void)set();
  EXPECT_EQ(operatorName, "Unknown");
  EXPECT_THAT(log(), testing::Contains("read Select * from Operator where name = 'Unknown'"));
}

TEST_F(setCalSetupOf, a_failing_statement_is_0) {
  script->fail(findSetup, refused);
  EXPECT_EQ(set(), 0);
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:setCalSetup", "Syntax error")));
}

TEST_F(setCalSetupOf, a_locked_database_is_not_waited_for) {
  script->fail(findSetup, locked);
  EXPECT_EQ(set(), 0);
  EXPECT_THAT(boxes,
              ElementsAre(errorBox("Error in RawData:setCalSetup", "The database is locked")));
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(setCalSetupOf, no_connection_is_shown) {
  EXPECT_EQ(setCalSetup(context, 7, 3, 2, operatorName, "Oil", nullptr), 0);
  EXPECT_THAT(boxes, ElementsAre(errorBoxOf("Error in RawData:setCalSetup")));
}

}  // namespace
}  // namespace pelmora::test
