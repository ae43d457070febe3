// The statements of the four derivations, to the character.
// SPDX-License-Identifier: MIT
#include "component/series_derivation.h"
#include "tests/support/operation_test.h"

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Derive = void (*)(const OperationContext&, const DerivationTarget&, MeterInfo&);

class derivation : public ScriptedOperationTest {
 protected:
  derivation() {
    meter.MeterID = 7;
    meter.Series.resize(4);
    const char* names[] = {"Rotor A", "Rotor B", "Rotor Sum", "Ratio"};
    for (std::size_t i = 0; i < 4; ++i) {
      meter.Series[i].SeriesName = names[i];
      meter.Series[i].SeriesID = static_cast<std::int32_t>(11 + i);
    }
  }
  void run(Derive derive) { derive(context, target, meter); }

  DerivationTarget target{openConnection(), "Raw2", "5", {"1001"}};
  MeterInfo meter;
};

TEST_F(derivation, of_rotor_A_takes_the_whole_set_up) {
  target.jobs = {"1001", "1002"};
  run(SeriesViaCaldb_RotorA);
  EXPECT_THAT(
      log(),
      ElementsAre(
          "execute Delete From Raw2 where seriesID=11",
          "execute INSERT INTO Raw2 ( seriesID,   Roshko,   Strouhal ) SELECT 11 AS SeriesID, "
          "[v4]/[v3]/[v5]*(1+((1.92E-05)*([v12]-70))) AS Roshko, "
          "([v4]/[v3])/([v2]/[v1])*(1+((2.88E-05)*([v12]-70))) AS Strouhal FROM CalDataPoint "
          "WHERE (((CalDataPoint.calSetupID)=5));"));
}

TEST_F(derivation, of_rotor_B_with_one_job_takes_its_own_columns) {
  run(SeriesViaCaldb_RotorB);
  EXPECT_THAT(
      log(),
      ElementsAre(
          "execute Delete From Raw2 where seriesID=12",
          "execute INSERT INTO Raw2 ( seriesID,   Roshko,   Strouhal ) SELECT 12 AS SeriesID, "
          "[v21]/[v20]/[v5]*(1+((1.92E-05)*([v12]-70))) AS Roshko, "
          "([v21]/[v20])/([v2]/[v1])*(1+((2.88E-05)*([v12]-70))) AS Strouhal FROM CalDataPoint "
          "WHERE (((CalDataPoint.calSetupID)=5));"));
}

TEST_F(derivation, of_rotor_B_with_two_jobs_takes_the_columns_of_rotor_A_of_the_second) {
  target.jobs = {"1001", "1002", "1003"};
  run(SeriesViaCaldb_RotorB);
  EXPECT_THAT(
      log(),
      ElementsAre(
          "execute Delete From Raw2 where seriesID=12",
          "execute INSERT INTO Raw2 ( seriesID,   Roshko,   Strouhal ) SELECT 12 AS SeriesID, "
          "[v4]/[v3]/[v5]*(1+((1.92E-05)*([v12]-70))) AS Roshko, "
          "([v4]/[v3])/([v2]/[v1])*(1+((2.88E-05)*([v12]-70))) AS Strouhal FROM CalDataPoint "
          "WHERE (((CalDataPoint.calSetupID)=5 and CalDataPoint.JobRecordID=1002));"));
}

TEST_F(derivation, of_the_sum_corrects_the_roshko_numbers_alone) {
  run(SeriesViaCaldb_SumAB);
  EXPECT_THAT(
      log(),
      ElementsAre(
          "execute Delete From Raw2 where seriesID=13",
          "execute INSERT INTO Raw2 ( seriesID,   Roshko,   Strouhal ) SELECT 13 AS SeriesID, "
          "([v4]/[v3]/[v5]*(1+((1.92E-05)*([v12]-70)))) + "
          "([v21]/[v20]/[v5]*(1+((1.92E-05)*([v12]-70)))) AS Roshko, "
          "([v4]/[v3])/([v21]/[v20]) AS Strouhal FROM CalDataPoint "
          "WHERE (((CalDataPoint.CalSetupID)=5));"));
}

TEST_F(derivation, of_the_ratio_is_that_of_the_sum_turned_over) {
  run(SeriesViaCaldb_Ratio);
  EXPECT_THAT(
      log(),
      ElementsAre(
          "execute Delete From Raw2 where seriesID=14",
          "execute INSERT INTO Raw2 ( seriesID,   Roshko,   Strouhal ) SELECT 14 AS SeriesID, "
          "([v4]/[v3]/[v5]*(1+((1.92E-05)*([v12]-70)))) + "
          "([v21]/[v20]/[v5]*(1+((1.92E-05)*([v12]-70)))) AS Roshko, "
          "([v21]/[v20])/([v4]/[v3]) AS Strouhal FROM CalDataPoint "
          "WHERE (((CalDataPoint.CalSetupID)=5));"));
}

TEST_F(derivation, into_Raw1_finds_the_series_row) {
  target.table = "Raw1";
  script->answer(
      "select * from series where name = 'Rotor B' and meterid=7",
      {{"ID", "name", "meterid"}, {{std::int64_t{31}, std::string("Rotor B"), std::int64_t{7}}}});
  run(SeriesViaCaldb_RotorB);
  EXPECT_EQ(meter.Series[1].SeriesID, 31);
  EXPECT_EQ(log().at(0), "read select * from series where name = 'Rotor B' and meterid=7");
  EXPECT_EQ(log().at(1), "execute Delete From Raw1 where seriesID=31");
  EXPECT_THAT(log().at(2), testing::StartsWith("execute INSERT INTO Raw1 ( seriesID,   Roshko,   "
                                               "Strouhal ) SELECT 31 AS SeriesID, "));
}

TEST_F(derivation, into_Raw1_adds_a_missing_series_row) {
  target.table = "Raw1";
  script->generatedId = 30;
  const std::vector<Derive> members{SeriesViaCaldb_RotorA, SeriesViaCaldb_RotorB,
                                    SeriesViaCaldb_SumAB, SeriesViaCaldb_Ratio};
  for (std::size_t i = 0; i < members.size(); ++i) {
    run(members[i]);
    EXPECT_EQ(meter.Series[i].SeriesID, 31 + static_cast<std::int32_t>(i));
    EXPECT_THAT(log(), testing::Contains("add name=" + meter.Series[i].SeriesName + " meterid=7"));
  }
}

TEST_F(derivation, into_a_table_in_another_case_uses_the_id_that_it_is_given) {
  target.table = "raw1";
  run(SeriesViaCaldb_RotorA);
  EXPECT_EQ(log().front(), "execute Delete From raw1 where seriesID=11");
  EXPECT_THAT(log(), testing::SizeIs(2));
}

// Sum and ratio of more than one job.
class per_point_derivation : public derivation {
 protected:
  per_point_derivation() { target.jobs = {"1001", "1002"}; }
  void answer(std::vector<std::vector<Value>> rows) {
    script->answer(statement, {{"v2", "v3", "v4", "v5", "v12"}, std::move(rows)});
  }

  const std::string statement =
      "Select v2,v3,v4,v5,v12 from CalDataPoint WHERE (((CalDataPoint.calSetupID)=5 and "
      "CalDataPoint.JobRecordID=1001));";
};

TEST_F(per_point_derivation, reads_the_first_job_twice_and_fails_at_the_first_pair) {
  answer({{1.0, 2.0, 3.0, 4.0, 70.0}});
  run(SeriesViaCaldb_SumAB);
  EXPECT_THAT(log(), ElementsAre("execute Delete From Raw2 where seriesID=13", "read " + statement,
                                 "read " + statement));
  EXPECT_THAT(boxes,
              ElementsAre(errorBox("Error in RawData:SeriesViaCaldb_SumAB", "Type mismatch")));
}

TEST_F(per_point_derivation, of_the_ratio_fails_alike) {
  answer({{1.0, 2.0, 3.0, 4.0, 70.0}});
  run(SeriesViaCaldb_Ratio);
  EXPECT_THAT(log(), ElementsAre("execute Delete From Raw2 where seriesID=14", "read " + statement,
                                 "read " + statement));
  EXPECT_THAT(boxes,
              ElementsAre(errorBox("Error in RawData:SeriesViaCaldb_Ratio", "Type mismatch")));
}

TEST_F(per_point_derivation, passes_unequal_pairs) {
  answer({{1.0, 2.0, 3.0, 4.0, 70.0}, {2.0, 2.0, 3.0, 4.0, 70.0}});
  answer({{9.0, 2.0, 3.0, 4.0, 70.0}, {2.0, 2.0, 3.0, 4.0, 70.0}});
  run(SeriesViaCaldb_SumAB);
  EXPECT_THAT(boxes,
              ElementsAre(errorBox("Error in RawData:SeriesViaCaldb_SumAB", "Type mismatch")));
}

TEST_F(per_point_derivation, ends_quietly_where_the_first_set_ends_before_the_second) {
  answer({{1.0, 2.0, 3.0, 4.0, 70.0}});
  answer({{9.0, 2.0, 3.0, 4.0, 70.0}, {9.0, 2.0, 3.0, 4.0, 70.0}});
  run(SeriesViaCaldb_SumAB);
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(per_point_derivation, reads_past_the_end_where_both_sets_end_together) {
  answer({});
  run(SeriesViaCaldb_SumAB);
  EXPECT_THAT(boxes, ElementsAre(errorBoxOf("Error in RawData:SeriesViaCaldb_SumAB")));
}

TEST_F(derivation, that_fails_carries_its_members_name) {
  const std::vector<std::pair<Derive, std::string>> members{{SeriesViaCaldb_RotorA, "RotorA"},
                                                            {SeriesViaCaldb_RotorB, "RotorB"},
                                                            {SeriesViaCaldb_SumAB, "SumAB"},
                                                            {SeriesViaCaldb_Ratio, "Ratio"}};
  for (int i = 0; i < 4; ++i) {
    script->fail("Delete From Raw2 where seriesID=" + std::to_string(11 + i), refused);
  }
  for (const auto& [derive, name] : members) {
    boxes.clear();
    run(derive);
    EXPECT_THAT(boxes,
                ElementsAre(errorBox("Error in RawData:SeriesViaCaldb_" + name, "Syntax error")));
  }
}

TEST_F(derivation, without_any_job_fails_after_the_delete_except_for_rotor_A) {
  target.jobs.clear();
  run(SeriesViaCaldb_RotorA);
  EXPECT_THAT(boxes, IsEmpty());
  for (Derive derive : {SeriesViaCaldb_RotorB, SeriesViaCaldb_SumAB, SeriesViaCaldb_Ratio}) {
    run(derive);
    EXPECT_THAT(boxes.back().text, testing::HasSubstr("\r\nSubscript out of range"));
    EXPECT_THAT(log().back(), testing::StartsWith("execute Delete From Raw2"));
  }
}

TEST_F(derivation, leaves_the_connection_open) {
  run(SeriesViaCaldb_RotorA);
  EXPECT_TRUE(target.connection->isOpen());
}

TEST_F(derivation, without_a_connection_is_shown) {
  target.connection = nullptr;
  run(SeriesViaCaldb_RotorA);
  EXPECT_THAT(boxes, ElementsAre(errorBoxOf("Error in RawData:SeriesViaCaldb_RotorA")));
}

}  // namespace
}  // namespace pelmora::test
