// Access files through the driver that a location gets.
// SPDX-License-Identifier: MIT
#include "component/import_caldb.h"
#include "tests/support/curve_database.h"
#include "tests/support/places.h"

#include <pelmora/calibration/database.h>
#include <pelmora/calibration/stand.h>

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string accessFile(const std::string& name) {
  return sourceFolder() + "/tests/data/access/" + name;
}

TEST(open_access_file, reads_what_the_file_holds) {
  const ConnectionPtr stand = openDatabase(accessFile("stand.mdb"));
  EXPECT_THAT(
      linesOf(*stand,
              "select JobRecordID, COUNT(V1) AS points from DataPoint group by JobRecordID"),
      ElementsAre("1042|25", "1043|40", "1057|32"));
}

TEST(open_access_file, refuses_changes_with_what_to_do) {
  const ConnectionPtr curves = openDatabase(accessFile("curves.mdb"));
  try {
    curves->execute("Delete * from series");
    ADD_FAILURE() << "deleted";
  } catch (const Error& error) {
    EXPECT_THAT(error.what(), HasSubstr("Change it in Access"));
  }
}

TEST(open_access_file, serves_operations_that_only_read) {
  namespace cal = pelmora::calibration;
  const cal::Database lab = cal::open(accessFile("curves.mdb"), {.mode = cal::Mode::read});
  EXPECT_EQ(lab.meters().size(), 5U);
  const cal::Meter meter = lab.meter("tf-10021");
  EXPECT_THAT(lab.seriesOf(meter), ElementsAre("TF-10021 recal 2"));
  EXPECT_EQ(lab.points(meter, "TF-10021 recal 2").size(), 90U);
  EXPECT_EQ(lab.curve(meter, "TF-10021 recal 2")(50.0).strouhal, 1.1137835);
  EXPECT_EQ(cal::Stand(accessFile("stand.mdb")).jobs().size(), 3U);
}

TEST(open_access_file, is_examined_without_repairs_that_it_does_not_allow) {
  namespace cal = pelmora::calibration;
  const cal::Database lab = cal::open(accessFile("curves.mdb"), {.mode = cal::Mode::read});
  const std::vector<cal::Finding> findings = lab.examine();
  EXPECT_FALSE(findings.empty());
  for (const cal::Finding& finding : findings) {
    EXPECT_FALSE(finding.canBeRepaired) << finding.id;
    EXPECT_NE(finding.remedy, "") << finding.id;
  }
}

TEST(open_access_file, cannot_receive_a_stands_rows) {
  const ConnectionPtr stand = openDatabase(accessFile("stand.mdb"));
  try {
    stand->execute("INSERT INTO CalDataPoint ( CalSetupID, V1 ) IN '" + accessFile("curves.mdb") +
                   "' SELECT 1 as CalSetupID, V1 FROM DataPoint;");
    ADD_FAILURE() << "inserted";
  } catch (const Error& error) {
    EXPECT_THAT(error.what(), HasSubstr("is an Access file, which cannot be changed here"));
  }
}

class access_stand : public CurveDatabaseTest {};

TEST_F(access_stand, gives_hosts_the_points_of_a_job) {
  addMeter(7, "M1", 0);
  CalibrationImport wanted;
  wanted.MeterSN = "M1";
  wanted.JobID_RawA = {"1043"};
  wanted.JobID_RawB = {""};
  wanted.FluidName = {"Oil"};
  wanted.OperatorName = {"Ada"};
  wanted.Create_RotorA = true;
  const ConnectionPtr stand = openDatabase(accessFile("stand.mdb"));
  const MeterInfo meter = importCaldb(context, wanted, stand, curves());
  EXPECT_THAT(boxes, testing::IsEmpty());
  EXPECT_THAT(lines("select COUNT(*) AS points from CalDataPoint where JobRecordID = 1043"),
              ElementsAre("40"));
  // The range that the writer of the file gives in the README of the data.
  ASSERT_FALSE(meter.Series.empty());
  const auto range =
      lines("select MIN(Roshko) AS low, MAX(Roshko) AS high from raw1 where seriesID = " +
            std::to_string(meter.Series[0].SeriesID));
  ASSERT_EQ(range.size(), 1U);
  EXPECT_NEAR(std::stod(range[0]), 40.0, 0.0005);
  EXPECT_NEAR(std::stod(range[0].substr(range[0].find('|') + 1)), 6000.0, 0.0005);
}

}  // namespace
}  // namespace pelmora::test
