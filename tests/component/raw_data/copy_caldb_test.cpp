// Statements, events and waiting of copyCaldb.
// SPDX-License-Identifier: MIT
#include "component/stand_copy.h"
#include "tests/support/operation_test.h"

#include <algorithm>
#include <chrono>

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string removeOld = "Delete * from CalDataPoint where CalDataPoint.calsetupid=5";
const std::string copyFirst =
    "INSERT INTO CalDataPoint ( CalSetupID, JobRecordID, V1, V2, V3, V4, V5, V6, V7, V8, V9, V10, "
    "V11, V12, V13, V14, V15, V16, V17, V18, V19, V20, V21, V22, V23, V24, V25, V26, V27, V28, "
    "V29, "
    "V30, V31, V32, V33, V34, V35, V36, V37 ) IN 'c:\\curves\\curves.db'SELECT 5 as CalSetupID, "
    "JobRecordID, V1, V2, V3, V4, V5, V6, V7, V8, V9, V10, V11, V12, V13, V14, V15, V16, V17, V18, "
    "V19, V20, V21, V22, V23, V24, V25, V26, V27, V28, V29, V30, V31, V32, V33, V34, V35, V36, V37 "
    "FROM DataPoint WHERE (((JobRecordID)=1001));";
const std::string copySecond =
    "INSERT INTO CalDataPoint IN 'c:\\curves\\curves.db' 5, (Select * from DataPoint Where "
    "((DataPoint.JobRecordID=1002)));";
const std::string waiting = "Waiting for database to unlock for copy of caldata (curves.db)";

class copyCaldbOf : public ScriptedOperationTest {
 protected:
  bool copy(const std::string& secondJob = "") {
    return copyCaldb(context, 5, "1001", secondJob, stand, curves);
  }

  ConnectionPtr stand = newConnection();
  ConnectionPtr curves = newConnection();
};

TEST_F(copyCaldbOf, one_job_replaces_the_points_and_closes_the_stand_alone) {
  EXPECT_TRUE(copy());
  EXPECT_THAT(log(),
              ElementsAre("open", "execute " + removeOld, "open", "execute " + copyFirst, "close"));
  EXPECT_FALSE(stand->isOpen());
  EXPECT_TRUE(curves->isOpen());
}

TEST_F(copyCaldbOf, open_connections_opens_none) {
  stand = openConnection();
  curves = openConnection();
  EXPECT_TRUE(copy());
  EXPECT_THAT(log(), ElementsAre("execute " + removeOld, "execute " + copyFirst, "close"));
  EXPECT_FALSE(stand->isOpen());
}

TEST_F(copyCaldbOf, one_job_pumps_the_hosts_messages_after_every_step) {
  (void)copy();
  EXPECT_THAT(events, ElementsAre("pump", "pump", "pump", "pump"));
}

TEST_F(copyCaldbOf, a_second_job_that_is_none_copies_one) {
  for (const char* none : {"", "0", "1001"}) {
    EXPECT_TRUE(copy(none)) << none;
    EXPECT_THAT(log(),
                testing::Not(testing::Contains(testing::HasSubstr("Select * from DataPoint"))));
  }
}

TEST_F(copyCaldbOf, two_jobs_sends_the_statement_without_a_select) {
  EXPECT_TRUE(copy("1002"));
  EXPECT_THAT(log(), ElementsAre("open", "execute " + removeOld, "open", "execute " + copyFirst,
                                 "execute " + copySecond, "close"));
  EXPECT_THAT(events, ElementsAre("pump", "pump", "pump", "pump", "pump"));
}

TEST_F(copyCaldbOf, a_second_job_with_other_zeros_is_a_job) {
  (void)copy("00");
  EXPECT_THAT(log(), testing::Contains(testing::HasSubstr("JobRecordID=00")));
}

TEST_F(copyCaldbOf, a_refused_second_job_is_false_and_shown) {
  script->fail(copySecond, refused);
  EXPECT_FALSE(copy("1002"));
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:copyCaldb", "Syntax error")));
  EXPECT_TRUE(curves->isOpen());
}

TEST_F(copyCaldbOf, a_refused_second_job_leaves_an_open_stand_open) {
  stand = openConnection();
  script->fail(copySecond, refused);
  EXPECT_FALSE(copy("1002"));
  EXPECT_TRUE(stand->isOpen());
}

TEST_F(copyCaldbOf, a_refused_second_job_closes_a_stand_that_was_closed_before) {
  script->fail(copySecond, refused);
  EXPECT_FALSE(copy("1002"));
  EXPECT_FALSE(stand->isOpen());
}

TEST_F(copyCaldbOf, a_failing_insert_comes_after_the_delete) {
  script->fail(copyFirst, refused);
  EXPECT_FALSE(copy());
  EXPECT_THAT(log(), testing::Contains("execute " + removeOld));
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:copyCaldb", "Syntax error")));
}

TEST_F(copyCaldbOf, a_failing_step_closes_a_stand_that_was_closed_before) {
  script->fail(copyFirst, refused);
  (void)copy();
  EXPECT_FALSE(stand->isOpen());
  EXPECT_TRUE(curves->isOpen());
}

TEST_F(copyCaldbOf, the_shared_location_goes_into_the_statement_unchecked) {
  shared.location = splitLocation("");
  EXPECT_TRUE(copy());
  EXPECT_THAT(log(), testing::Contains(testing::HasSubstr(" ) IN ''SELECT 5 as ")));
}

// Which step finds its database locked: its place among the statements, and the pumps before it.
struct Step {
  std::string name, statement;
  int pumpsBefore;
};
void PrintTo(const Step& step, std::ostream* out) { *out << step.name; }

std::string nameOf(const testing::TestParamInfo<Step>& info) { return info.param.name; }

class locked_copy : public ScriptedOperationTest, public testing::WithParamInterface<Step> {};

TEST_P(locked_copy, is_waited_for_and_tried_again) {
  for (int i = 0; i < 2; ++i) script->fail(GetParam().statement, locked);
  EXPECT_TRUE(copyCaldb(context, 5, "1001", "1002", newConnection(), newConnection()));
  EXPECT_THAT(boxes, IsEmpty());
  std::vector<std::string> expected(static_cast<std::size_t>(GetParam().pumpsBefore), "pump");
  for (int i = 0; i < 2; ++i) expected.insert(expected.end(), {"pump", waiting, "pump"});
  expected.resize(expected.size() + 5 - static_cast<std::size_t>(GetParam().pumpsBefore), "pump");
  EXPECT_EQ(events, expected);
  const bool opening = GetParam().statement == "open";
  EXPECT_EQ(
      std::count(log().begin(), log().end(), opening ? "open" : "execute " + GetParam().statement),
      opening ? 4 : 3);
}

INSTANTIATE_TEST_SUITE_P(at, locked_copy,
                         testing::Values(Step{"opening", "open", 0}, Step{"delete", removeOld, 1},
                                         Step{"first_job", copyFirst, 2},
                                         Step{"second_job", copySecond, 3}),
                         nameOf);

TEST_F(copyCaldbOf, a_locked_database_goes_to_the_location_set_meanwhile) {
  script->fail(copyFirst, locked);
  const OperationContext moving(shared, platform(), [this](const std::string&) {
    shared.location = splitLocation("d:\\other.db");
  });
  EXPECT_TRUE(copyCaldb(moving, 5, "1001", "", stand, curves));
  EXPECT_THAT(log(), testing::Contains(testing::HasSubstr(" ) IN 'd:\\other.db'SELECT 5 as ")));
}

// A hundred tries: pauses of 50 ms would add up to the limit, pauses of 5 ms to a tenth of it.
TEST_F(copyCaldbOf, a_locked_database_is_tried_again_without_a_pause_that_a_window_would_show) {
  constexpr int tries = 100;
  constexpr auto limit = std::chrono::milliseconds(50 * tries);
  for (int i = 0; i < tries; ++i) script->fail(removeOld, locked);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(copy());
  EXPECT_LT(std::chrono::steady_clock::now() - start, limit);
  EXPECT_THAT(statusTexts(), testing::SizeIs(tries));
  EXPECT_EQ(std::ranges::count(events, "pump"), 4 + 2 * tries);
}

TEST_F(copyCaldbOf, another_error_than_a_lock_is_not_waited_for) {
  script->fail(removeOld, Error(static_cast<std::int32_t>(0x80004004U), "Driver", "Aborted"));
  EXPECT_FALSE(copy());
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:copyCaldb", "Aborted")));
  EXPECT_THAT(statusTexts(), IsEmpty());
}

TEST_F(copyCaldbOf, a_missing_stand_comes_after_the_delete) {
  stand = nullptr;
  EXPECT_FALSE(copy());
  EXPECT_THAT(log(), ElementsAre("open", "execute " + removeOld));
  EXPECT_THAT(boxes, ElementsAre(errorBoxOf("Error in RawData:copyCaldb")));
}

TEST_F(copyCaldbOf, a_missing_curve_database_does_nothing) {
  curves = nullptr;
  EXPECT_FALSE(copy());
  EXPECT_THAT(log(), IsEmpty());
  EXPECT_THAT(boxes, ElementsAre(errorBoxOf("Error in RawData:copyCaldb")));
}

}  // namespace
}  // namespace pelmora::test
