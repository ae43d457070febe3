// The import of runs with two jobs, and of set-ups without points.
// SPDX-License-Identifier: MIT
#include "component/import_caldb.h"
#include "tests/support/curve_database.h"

namespace pelmora::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class import_of_jobs : public CurveDatabaseTest {
 protected:
  import_of_jobs() { addMeter(7, "M1", 0); }
  struct Run {
    std::string jobA, jobB, fluid;
  };
  MeterInfo importRuns(const std::vector<Run>& runs) {
    CalibrationImport wanted;
    wanted.MeterSN = "M1";
    for (const Run& run : runs) {
      wanted.JobID_RawA.push_back(run.jobA);
      wanted.JobID_RawB.push_back(run.jobB);
      wanted.FluidName.push_back(run.fluid);
      wanted.OperatorName.emplace_back("Ada");
    }
    wanted.Create_RotorA = wanted.Create_RotorB = true;
    wanted.Create_RotorAB = wanted.Create_Ratio = true;
    const ConnectionPtr from = stand({{.job = "1001", .v4 = 10}, {.job = "1002", .v4 = 20}});
    return importCaldb(context, wanted, from, curves());
  }
  // A set-up that comes before those of the import, with points of these jobs.
  void addSetUp(int id, const std::vector<std::string>& jobs) {
    run("INSERT INTO CalSetup (ID, MeterID, Stand, FluidID) VALUES (" + std::to_string(id) +
        ",7,-5,0)");
    for (const std::string& job : jobs) {
      run("INSERT INTO CalDataPoint (CalSetupID, JobRecordID, V1, V2, V3, V4, V5, V12, V20, V21) "
          "VALUES (" +
          std::to_string(id) + "," + job + ",1,1,1," + job + ",1,70,1,1)");
    }
  }
};

TEST_F(import_of_jobs, with_two_jobs_shows_the_copys_box_and_derives_from_the_first) {
  const MeterInfo meter = importRuns({{"1001", "1002", "Oil"}});
  EXPECT_THAT(boxes, ElementsAre(errorBox("Error in RawData:copyCaldb",
                                          "Syntax error in INSERT INTO statement.")));
  EXPECT_THAT(lines("select roshko from raw1 where seriesID = " +
                    std::to_string(meter.Series.at(0).SeriesID)),
              ElementsAre("10"));
}

TEST_F(import_of_jobs, goes_on_with_the_next_run_after_a_refused_second_job) {
  (void)importRuns({{"1001", "1002", "Oil"}, {"1002", "", "Water"}});
  EXPECT_THAT(lines("select JobRecordID from CalDataPoint order by JobRecordID"),
              ElementsAre("1001", "1002"));
}

TEST_F(import_of_jobs, goes_on_without_a_set_up_where_the_fluid_has_a_quote) {
  (void)importRuns({{"1001", "", "O'il"}});
  EXPECT_THAT(boxes, ElementsAre(errorBoxOf("Error in RawData:setCalSetup")));
  EXPECT_THAT(lines("select CalSetupID, JobRecordID from CalDataPoint"), ElementsAre("0|1001"));
  EXPECT_THAT(lines("select * from series"), IsEmpty());
}

TEST_F(import_of_jobs, lists_the_jobs_of_a_set_up_in_rising_order) {
  addSetUp(3, {"9", "10", "9", "8"});
  const MeterInfo meter = importRuns({{"1001", "", "Oil"}});
  EXPECT_THAT(log(), Contains("read Select DISTINCT JobRecordID from CalDataPoint where "
                              "CalSetupID=3 ORDER BY JobRecordID ASC"));
  // Rotor B is the second job, sum and ratio fail.
  EXPECT_THAT(lines("select roshko from raw1 where seriesID = " +
                    std::to_string(meter.Series.at(1).SeriesID)),
              ElementsAre("9", "9"));
  EXPECT_THAT(boxes,
              ElementsAre(errorBox("Error in RawData:SeriesViaCaldb_SumAB", "Type mismatch"),
                          errorBox("Error in RawData:SeriesViaCaldb_Ratio", "Type mismatch")));
}

TEST_F(import_of_jobs, keeps_the_jobs_of_the_set_up_before_one_without_points) {
  addSetUp(3, {"8", "9"});
  addSetUp(4, {});
  (void)importRuns({{"1001", "", "Oil"}});
  EXPECT_THAT(log(), Contains(HasSubstr("calSetupID)=4 and CalDataPoint.JobRecordID=9));")));
}

TEST_F(import_of_jobs, derives_rotor_A_alone_where_no_set_up_had_points_so_far) {
  addSetUp(3, {});
  const MeterInfo meter = importRuns({{"1001", "", "Oil"}});
  EXPECT_THAT(
      boxes,
      ElementsAre(errorBox("Error in RawData:SeriesViaCaldb_RotorB", "Subscript out of range"),
                  errorBox("Error in RawData:SeriesViaCaldb_SumAB", "Subscript out of range"),
                  errorBox("Error in RawData:SeriesViaCaldb_Ratio", "Subscript out of range")));
  EXPECT_THAT(lines("select * from raw2"), testing::SizeIs(4));
  EXPECT_NE(meter.Series.at(3).SeriesID, 0);
}

}  // namespace
}  // namespace pelmora::test
