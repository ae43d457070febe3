// Which connection the look-ups work on, and what becomes of it.
// SPDX-License-Identifier: MIT
#include "component/lookups.h"
#include "tests/support/operation_test.h"

#include <functional>

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

struct Operation {
  std::string name, box;
  std::function<void(const OperationContext&, const ConnectionPtr&)> run;
};

void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }
std::string nameOf(const testing::TestParamInfo<Operation>& info) { return info.param.name; }

std::vector<Operation> operationsThatTakeAConnection() {
  return {{"findMeterInfo", "Error in RawData:findMeterInfo",
           [](const auto& context, const auto& conn) {
             (void)findMeterInfo(context, "M1", conn, -1, "");
           }},
          {"FindLastCalID", "Error in RawData:LastCalID",
           [](const auto& context, const auto& conn) { (void)FindLastCalID(context, "M1", conn); }},
          {"getSeriesID", "Error in Misc:getSeriesID", [](const auto& context, const auto& conn) {
             (void)getSeriesID(context, "Rotor A", "M1", conn, -1);
           }}};
}

std::vector<Operation> allOperations() {
  std::vector<Operation> operations = operationsThatTakeAConnection();
  operations.push_back({"Series", "Error in RawData:series", [](const auto& context, const auto&) {
                          (void)listSeries(context, "M1", -1);
                        }});
  operations.push_back(
      {"MetersAdjusted", "Error in RawData:meters", [](const auto& context, const auto&) {
         bool empty = false;
         std::vector<std::int16_t> recals;
         (void)MetersAdjusted(context, "M1", empty, recals);
       }});
  operations.push_back({"Meters", "Error in RawData:meters", [](const auto& context, const auto&) {
                          bool empty = false;
                          (void)Meters(context, empty);
                        }});
  operations.push_back(
      {"DeleteSeries", "Error in RawData:series",
       [](const auto& context, const auto&) { (void)DeleteSeries(context, "M1", "Rotor A", -1); }});
  operations.push_back(
      {"setMeterSN", "Error in RawData:setMeterSN", [](const auto& context, const auto&) {
         std::string adjusted;
         (void)setMeterSN(context, "M1", adjusted);
       }});
  operations.push_back(
      {"getJobID", "Error in RawData:getJobID",
       [](const auto& context, const auto&) { (void)getJobID(context, "M1", -1); }});
  return operations;
}

class own_connection_of : public ScriptedOperationTest,
                          public testing::WithParamInterface<Operation> {};

TEST_P(own_connection_of, is_of_the_shared_location_opened_once_and_closed) {
  GetParam().run(context, nullptr);
  EXPECT_THAT(locations, ElementsAre("c:\\curves\\curves.db"));
  ASSERT_GE(log().size(), 3U);
  EXPECT_EQ(log().front(), "open");
  EXPECT_EQ(log().back(), "close");
  EXPECT_EQ(std::count(log().begin(), log().end(), "open"), 1);
  EXPECT_EQ(std::count(log().begin(), log().end(), "close"), 1);
}

TEST_P(own_connection_of, fails_with_the_operations_box_where_there_is_no_location) {
  shared.location = {};
  GetParam().run(context, nullptr);
  EXPECT_THAT(boxes, ElementsAre(errorBox(GetParam().box, "Empty database location")));
  EXPECT_THAT(log(), IsEmpty());
}

TEST_P(own_connection_of, that_does_not_open_is_reported_with_the_operations_box) {
  script->fail("open", Error(53, "Driver", "Could not find file"));
  GetParam().run(context, nullptr);
  EXPECT_THAT(boxes, ElementsAre(errorBox(GetParam().box, "Could not find file")));
  EXPECT_THAT(log(), ElementsAre("open"));
}

INSTANTIATE_TEST_SUITE_P(operation, own_connection_of, testing::ValuesIn(allOperations()), nameOf);

class passed_connection_of : public ScriptedOperationTest,
                             public testing::WithParamInterface<Operation> {};

TEST_P(passed_connection_of, is_used_and_left_open) {
  const ConnectionPtr connection = openConnection();
  GetParam().run(context, connection);
  EXPECT_THAT(locations, IsEmpty());
  EXPECT_TRUE(connection->isOpen());
  EXPECT_THAT(log(), testing::Each(testing::StartsWith("read ")));
  EXPECT_THAT(log(), testing::Not(IsEmpty()));
}

TEST_P(passed_connection_of, needs_no_shared_location) {
  shared.location = {};
  GetParam().run(context, openConnection());
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_P(passed_connection_of, is_left_open_after_an_error) {
  const ConnectionPtr connection = openConnection();
  GetParam().run(context, connection);
  script->fail(log().front().substr(std::string("read ").size()), refused);
  GetParam().run(context, connection);
  EXPECT_THAT(boxes, ElementsAre(errorBox(GetParam().box, "Syntax error")));
  EXPECT_TRUE(connection->isOpen());
}

INSTANTIATE_TEST_SUITE_P(operation, passed_connection_of,
                         testing::ValuesIn(operationsThatTakeAConnection()), nameOf);

class own_connection_after_an_error_of : public ScriptedOperationTest,
                                         public testing::WithParamInterface<Operation> {};

TEST_P(own_connection_after_an_error_of, is_closed) {
  GetParam().run(context, nullptr);
  const Log before = log();
  script->fail(before.at(before.size() - 2).substr(std::string("read ").size()), refused);
  GetParam().run(context, nullptr);
  EXPECT_THAT(boxes, SizeIs(1));
  EXPECT_EQ(log().back(), "close");
  EXPECT_EQ(std::count(log().begin(), log().end(), "open"), 2);
  EXPECT_EQ(std::count(log().begin(), log().end(), "close"), 2);
}

TEST_P(own_connection_after_an_error_of, is_still_open_while_the_box_shows) {
  GetParam().run(context, nullptr);
  const Log before = log();
  script->fail(before.at(before.size() - 2).substr(std::string("read ").size()), refused);
  Log atBox;
  platform().messageBox = [&](const std::string&, int, const std::string&) {
    atBox = log();
    return 1;
  };
  GetParam().run(context, nullptr);
  EXPECT_EQ(std::count(atBox.begin(), atBox.end(), "open"), 2);
  EXPECT_EQ(std::count(atBox.begin(), atBox.end(), "close"), 1);
}

std::vector<Operation> operationsEndingInARead() {
  std::vector<Operation> operations = allOperations();
  std::erase_if(operations,
                [](const Operation& operation) { return operation.name == "setMeterSN"; });
  return operations;
}

INSTANTIATE_TEST_SUITE_P(operation, own_connection_after_an_error_of,
                         testing::ValuesIn(operationsEndingInARead()), nameOf);

}  // namespace
}  // namespace pelmora::test
