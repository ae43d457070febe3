// The import on a real curve database: meters, runs and set-ups.
// SPDX-License-Identifier: MIT
#include "component/import_caldb.h"
#include "tests/support/curve_database.h"

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class calibration_import : public CurveDatabaseTest {
 protected:
  calibration_import() { wanted.MeterSN = "M1"; }

  void addRun(const std::string& fluid, const std::string& jobA, const std::string& jobB = "",
              const std::string& operatorName = "Ada") {
    wanted.JobID_RawA.push_back(jobA);
    wanted.JobID_RawB.push_back(jobB);
    wanted.FluidName.push_back(fluid);
    wanted.OperatorName.push_back(operatorName);
  }
  void forgetRuns(const std::string& MeterSN) {
    wanted = CalibrationImport();
    wanted.MeterSN = MeterSN;
  }
  void wantAll() {
    wanted.Create_RotorA = wanted.Create_RotorB = true;
    wanted.Create_RotorAB = wanted.Create_Ratio = true;
  }
  // Rows of job 1001, 1002 ... that differ in V4.
  ConnectionPtr standOf(int jobs) {
    std::vector<StandRow> rows;
    for (int i = 1; i <= jobs; ++i) {
      rows.push_back({.job = std::to_string(1000 + i), .v4 = 10.0 * i});
    }
    return stand(rows);
  }
  MeterInfo importFrom(const ConnectionPtr& from, const ConnectionPtr& to = nullptr) {
    return importCaldb(context, wanted, from, to);
  }
  static void expectFourNames(const MeterInfo& meter) {
    ASSERT_EQ(meter.Series.size(), 4U);
    EXPECT_EQ(meter.Series[0].SeriesName, "Rotor A");
    EXPECT_EQ(meter.Series[1].SeriesName, "Rotor B");
    EXPECT_EQ(meter.Series[2].SeriesName, "Rotor Sum");
    EXPECT_EQ(meter.Series[3].SeriesName, "Ratio");
  }

  CalibrationImport wanted;
};  // namespace

TEST_F(calibration_import, of_no_run_does_nothing) {
  wantAll();
  shared.location = {};
  EXPECT_EQ(importFrom(nullptr), MeterInfo());
  EXPECT_THAT(boxes, IsEmpty());
  EXPECT_THAT(log(), IsEmpty());
}

TEST_F(calibration_import, of_lists_that_differ_in_length_does_nothing) {
  for (auto* list :
       {&wanted.JobID_RawA, &wanted.JobID_RawB, &wanted.FluidName, &wanted.OperatorName}) {
    addRun("Oil", "1001");
    list->emplace_back("one more");
    EXPECT_EQ(importFrom(nullptr), MeterInfo());
    list->clear();
    EXPECT_EQ(importFrom(nullptr), MeterInfo());
    forgetRuns("M1");
  }
  EXPECT_THAT(log(), IsEmpty());
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(calibration_import, without_flags_copies_and_names_the_series) {
  addMeter(7, "M1", 0, "adjusted");
  addRun("Oil", "1001");
  const MeterInfo meter = importFrom(standOf(1));
  EXPECT_EQ(meter.Source, 1);
  EXPECT_EQ(meter.MeterID, 7);
  EXPECT_EQ(meter.SerialNumberAdjusted, "adjusted");
  expectFourNames(meter);
  EXPECT_EQ(meter.Series[0].SeriesID, 0);
  EXPECT_THAT(lines("select JobRecordID from CalDataPoint"), ElementsAre("1001"));
  EXPECT_THAT(lines("select * from series"), IsEmpty());
  EXPECT_THAT(log(),
              testing::Not(testing::Contains(testing::HasSubstr("Select ID from CalSetup"))));
}

TEST_F(calibration_import, with_all_flags_fills_four_series) {
  addMeter(7, "M1", 0);
  addRun("Oil", "1001");
  wantAll();
  const MeterInfo meter = importFrom(standOf(1));
  expectFourNames(meter);
  EXPECT_THAT(lines("select name, meterid from series order by ID"),
              ElementsAre("Rotor A|7", "Rotor B|7", "Rotor Sum|7", "Ratio|7"));
  for (const SeriesInfo& series : meter.Series) {
    EXPECT_THAT(
        lines("select roshko from raw1 where seriesID = " + std::to_string(series.SeriesID)),
        SizeIs(1));
  }
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(calibration_import, with_one_flag_fills_that_series_alone) {
  const std::vector<std::pair<bool CalibrationImport::*, std::string>> flags{
      {&CalibrationImport::Create_RotorA, "Rotor A"},
      {&CalibrationImport::Create_RotorB, "Rotor B"},
      {&CalibrationImport::Create_RotorAB, "Rotor Sum"},
      {&CalibrationImport::Create_Ratio, "Ratio"}};
  for (const auto& [flag, name] : flags) {
    forgetRuns("meter of " + name);
    addRun("Oil", "1001");
    wanted.*flag = true;
    const MeterInfo meter = importFrom(standOf(1));
    EXPECT_THAT(lines("select name from series where meterid = " + std::to_string(meter.MeterID)),
                ElementsAre(name));
  }
}

TEST_F(calibration_import, registers_an_unknown_meter_first) {
  addRun("Oil", "1001");
  wanted.Create_RotorA = true;
  const MeterInfo meter = importFrom(standOf(1));
  EXPECT_EQ(meter.Source, 1);
  EXPECT_THAT(lines("select SerialNumber, SerialNumberAdjusted, ReCalID from meter"),
              ElementsAre("M1|M1|0"));
  EXPECT_THAT(lines("select MeterID from CalSetup"), ElementsAre(std::to_string(meter.MeterID)));
  EXPECT_EQ(statusTexts(), (std::vector<std::string>{"Saving meter serial number M1"}));
}

TEST_F(calibration_import, opens_the_connection_anew_after_registering) {
  addRun("Oil", "1001");
  const ConnectionPtr from = standOf(1);
  const ConnectionPtr to = curves();
  clearLog();
  (void)importFrom(from, to);
  const std::string find =
      "read SELECT TOP 1 ID, ReCalID, SerialNumberAdjusted from meter where serialnumber='M1' "
      "ORDER "
      "BY ReCalID DESC";
  ASSERT_GT(log().size(), 11U);
  EXPECT_EQ(log()[2], "open");  // of the registration itself
  EXPECT_EQ(Log(log().begin() + 7, log().begin() + 11), (Log{"close", "close", "open", find}));
  EXPECT_TRUE(to->isOpen());
}

TEST_F(calibration_import, stops_where_the_registered_meter_is_not_the_one_asked_for) {
  addRun("Oil", "1001");
  wanted.ReCalID = 5;
  wantAll();
  EXPECT_EQ(importFrom(standOf(1)), (MeterInfo{-1, -1, 0, "", "", {}}));
  EXPECT_THAT(lines("select ReCalID from meter"), ElementsAre("0"));
  EXPECT_THAT(lines("select * from CalSetup"), IsEmpty());
}

TEST_F(calibration_import, takes_a_meter_of_the_master_list_by_that_lists_id) {
  addMaster(40, "M1", 2);
  addRun("Oil", "1001");
  const MeterInfo meter = importFrom(standOf(1));
  EXPECT_EQ(meter.Source, 2);
  EXPECT_THAT(lines("select MeterID from CalSetup"), ElementsAre("40"));
  EXPECT_THAT(lines("select * from meter"), IsEmpty());
}

TEST_F(calibration_import, of_runs_with_the_same_fluid_keeps_the_last) {
  addRun("Oil", "1001");
  addRun("oil", "1002");
  (void)importFrom(standOf(2));
  EXPECT_THAT(lines("select ID from CalSetup"), SizeIs(1));
  EXPECT_THAT(lines("select JobRecordID from CalDataPoint"), ElementsAre("1002"));
}

TEST_F(calibration_import, of_runs_with_two_fluids_fills_two_tables_of_the_same_series) {
  addRun("Oil", "1001");
  addRun("Water", "1002");
  wanted.Create_RotorA = true;
  const MeterInfo meter = importFrom(standOf(2));
  const std::string id = std::to_string(meter.Series.at(0).SeriesID);
  EXPECT_THAT(lines("select seriesID, roshko from raw1"), ElementsAre(id + "|10"));
  EXPECT_THAT(lines("select seriesID, roshko from raw2"), ElementsAre(id + "|20"));
  EXPECT_THAT(lines("select * from series"), SizeIs(1));
}

TEST_F(calibration_import, takes_the_first_four_set_ups_by_stand_and_then_id) {
  addMeter(7, "M1", 0);
  const std::vector<std::pair<int, int>> idsAndStands{{1, 3}, {2, 2}, {3, 2}, {4, 1}, {6, 9}};
  for (const auto& [id, stand] : idsAndStands) {
    run("INSERT INTO CalSetup (ID, MeterID, Stand, FluidID) VALUES (" + std::to_string(id) + ",7," +
        std::to_string(stand) + ",0)");
    run("INSERT INTO CalDataPoint (CalSetupID, JobRecordID, V1, V2, V3, V4, V5, V12) VALUES (" +
        std::to_string(id) + ",1,1,1,1," + std::to_string(10 * id) + ",1,70)");
  }
  addRun("Oil", "1001");
  wanted.StandID = 8;  // the fifth of six
  wanted.Create_RotorA = true;
  (void)importFrom(standOf(1));
  EXPECT_THAT(lines("select roshko from raw1"), ElementsAre("40"));
  EXPECT_THAT(lines("select roshko from raw2"), ElementsAre("20"));
  EXPECT_THAT(lines("select roshko from raw3"), ElementsAre("30"));
  EXPECT_THAT(lines("select roshko from raw4"), ElementsAre("10"));
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(calibration_import, stores_stand_position_and_operator_with_the_set_up) {
  addMeter(7, "M1", 0);
  addRun("Oil", "1001", "", "");
  wanted.StandID = 4;
  wanted.PositionID = 2;
  (void)importFrom(standOf(1));
  EXPECT_THAT(lines("select MeterID, Stand, MeterPosition from CalSetup"), ElementsAre("7|4|2"));
  EXPECT_THAT(lines("select Name from Operator"), ElementsAre("Unknown"));
  EXPECT_EQ(wanted.OperatorName, (std::vector<std::string>{""}));
}

TEST_F(calibration_import, closes_its_own_connection) {
  addMeter(7, "M1", 0);
  addRun("Oil", "1001");
  const ConnectionPtr from = standOf(1);
  clearLog();
  (void)importFrom(from);
  EXPECT_EQ(log().front(), "open");
  EXPECT_EQ(log().back(), "close");
  EXPECT_EQ(std::count(log().begin(), log().end(), "close"), 2);  // the stand's and its own
}

TEST_F(calibration_import, without_a_location_is_shown_with_the_errors_source_as_title) {
  addRun("Oil", "1001");
  shared.location = {};
  EXPECT_EQ(importFrom(nullptr).Source, -1);
  EXPECT_THAT(boxes, ElementsAre(Box{"Error in modFlow:copyCalData \r\nEmpty database location", 16,
                                     "Error Pelmora:getConnection"}));
}

TEST_F(calibration_import, of_more_runs_than_16_bits_count_copies_none) {
  addMeter(7, "M1", 0);
  for (int run = 0; run < 32768; ++run) addRun("Oil", "1001");
  wanted.Create_RotorA = true;
  const MeterInfo meter = importFrom(nullptr);
  EXPECT_THAT(boxes,
              ElementsAre(Box{"Error in modFlow:copyCalData \r\nOverflow", 16, "Error Pelmora"}));
  EXPECT_THAT(meter.Series, SizeIs(4));
  EXPECT_THAT(lines("select * from CalSetup"), IsEmpty());
}

TEST_F(calibration_import, without_a_stand_shows_the_copys_box_and_goes_on) {
  addMeter(7, "M1", 0);
  addRun("Oil", "1001");
  wanted.Create_RotorA = true;
  const MeterInfo meter = importFrom(nullptr);
  EXPECT_THAT(boxes, ElementsAre(errorBoxOf("Error in RawData:copyCaldb")));
  EXPECT_NE(meter.Series.at(0).SeriesID, 0);
}

}  // namespace
}  // namespace pelmora::test
