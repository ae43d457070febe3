// What each operation sends to the curve database: every statement, in order, blanks included.
// SPDX-License-Identifier: MIT
#include "base/date_text.h"
#include "tests/support/point_rows.h"
#include "tests/support/recording_connection.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/scripted_connection.h"

#include <pelmora/platform.h>
#include <pelmora/raw_data.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace pelmora {
namespace {

using test::Log;

const std::string latestMeter =
    "SELECT TOP 1 ID, ReCalID, SerialNumberAdjusted from meter where serialnumber='4711' ORDER BY "
    "ReCalID DESC";
const std::string latestMaster =
    "SELECT TOP 1 ID, ReCalID from masterMeterList where serialnumber='4711' ORDER BY ReCalID DESC";
const std::string latestSeries =
    "SELECT TOP 1 series.ID AS seriesID,meter.ID, meter.ReCalID, meter.SerialNumberAdjusted from "
    "series left join "
    "meter on series.meterid=meter.id where serialnumber='4711' AND series.name = 'Ratio' ORDER BY "
    "ReCalID DESC";

class statement_texts : public testing::Test {
 protected:
  statement_texts() {
    platform() = Platform();
    platform().createConnection = [this](const std::string&) { return connection(); };
    platform().messageBox = [this](const std::string& text, int, const std::string&) {
      boxes_.push_back(text);
      return 1;
    };
    data_.dbDirSetByString("c:\\curves.mdb");
  }
  ~statement_texts() override { platform() = Platform(); }

  ConnectionPtr connection() {
    return std::make_shared<test::RecordingConnection>(
        std::make_shared<test::ScriptedConnection>(script_), log_);
  }
  void haveMeter() {
    script_->answer(latestMeter, {{"ID", "ReCalID", "SerialNumberAdjusted"},
                                  {{std::int64_t{3}, std::int64_t{2}, std::string("4711-A")}}});
  }
  void haveSeries() {
    script_->answer(latestSeries,
                    {{"seriesID", "ID", "ReCalID", "SerialNumberAdjusted"},
                     {{std::int64_t{7}, std::int64_t{3}, std::int64_t{2}, std::string("4711-A")}}});
  }
  void haveId(const std::string& statement, std::int64_t id) {
    script_->answer(statement, {{"ID"}, {{id}}});
  }
  // An own connection from its opening to its closing, without a box.
  void expectOwn(const std::vector<std::string>& sent) {
    Log expected{"open"};
    expected.insert(expected.end(), sent.begin(), sent.end());
    expected.emplace_back("close");
    EXPECT_EQ(*log_, expected);
    EXPECT_THAT(boxes_, testing::IsEmpty());
    log_->clear();
  }

  std::shared_ptr<test::Script> script_ = std::make_shared<test::Script>();
  std::shared_ptr<Log> log_ = std::make_shared<Log>();
  std::vector<std::string> boxes_;
  RawData data_;
};

TEST_F(statement_texts, of_findMeterInfo) {
  data_.findMeterInfo("4711");
  expectOwn({"read " + latestMeter, "read " + latestMaster});
  haveMeter();
  data_.findMeterInfo("4711");
  expectOwn({"read " + latestMeter});
  data_.findMeterInfo("4711", {}, 0, "Ratio");
  expectOwn(
      {"read SELECT series.ID AS seriesID,meter.ID, meter.ReCalID, meter.SerialNumberAdjusted from "
       "series left "
       "join meter on series.meterid=meter.id where serialnumber='4711' AND recalid=0 AND "
       "series.name = 'Ratio' "
       "ORDER BY ReCalID DESC",
       "read SELECT ID, ReCalID from masterMeterList where serialnumber='4711' AND recalid=0 "
       "ORDER BY ReCalID DESC"});
}

TEST_F(statement_texts, of_FindLastCalID) {
  data_.FindLastCalID("4711");
  expectOwn({"read " + latestMeter, "read " + latestMaster});
}

TEST_F(statement_texts, of_Series) {
  haveMeter();
  data_.Series("4711");
  expectOwn({"read " + latestMeter,
             "read Select distinct serialnumber, name from meter left join series on "
             "meter.id=series.meterid  where "
             "serialnumber = '4711' and recalid =2"});
}

TEST_F(statement_texts, of_Meters_and_MetersAdjusted) {
  bool isEmpty = false;
  std::vector<std::int16_t> recals;
  data_.Meters(isEmpty);
  expectOwn({"read Select distinct serialnumber from meter"});
  data_.MetersAdjusted("4711", isEmpty, recals);
  expectOwn(
      {"read Select SerialNumberAdjusted, recalid from meter where SerialNumber = '4711' order by "
       "recalid desc"});
}

TEST_F(statement_texts, of_DeleteSeries) {
  haveSeries();
  data_.DeleteSeries("4711", "Ratio");
  expectOwn({"read " + latestSeries, "execute DELETE Series.* from series where id=7"});
}

TEST_F(statement_texts, of_setMeterSN) {
  haveMeter();
  data_.setMeterSN("4711");
  expectOwn({"read " + latestMeter,
             "read select id, serialnumber, serialNumberAdjusted, recalid from meter where "
             "serialnumber = '4711'",
             "add serialnumber=4711 serialnumberadjusted=4711 ReCalID=3"});
}

TEST_F(statement_texts, of_getJobID) {
  const std::string jobs =
      " CalDatapoint.JobRecordID FROM (Meter LEFT JOIN CalSetup ON Meter.ID = CalSetup.MeterID) "
      "LEFT JOIN CalDatapoint "
      "ON CalSetup.ID = CalDatapoint.CalSetupID WHERE Meter.SerialNumber='4711' ";
  data_.getJobID("4711");
  expectOwn({"read SELECT TOP 1" + jobs + " ORDER BY ReCalID DESC"});
  data_.getJobID("4711", 5);
  expectOwn({"read SELECT" + jobs + " AND recalid=5 ORDER BY ReCalID DESC"});
}

TEST_F(statement_texts, of_SetRaw) {
  haveMeter();
  data_.SetRaw("Ratio", "4711", {{1.5, 2}}, 0, false);
  expectOwn({"read " + latestMeter, "read select * from series where name = 'Ratio' and meterid=3",
             "add name=Ratio meterid=3", "execute DELETE from raw1 where seriesID = 1",
             "batch Select * from raw1 where seriesID=1", "add seriesID=1 Roshko=1.5 Strouhal=2",
             "update batch"});
}

TEST_F(statement_texts, of_GetRaw) {
  haveSeries();
  data_.GetRaw("Ratio", "4711", 4);
  expectOwn({"read " + latestSeries, "read Select roshko, strouhal from raw4 where seriesID = 7"});
}

TEST_F(statement_texts, of_determineFittedCurve) {
  const std::string lookUp =
      "SELECT TOP 1 series.*, meter.recalid, meter.serialnumberadjusted from series left join "
      "meter on "
      "series.meterid=meter.id where series.name = 'Ratio' and meter.serialnumber='4711' ORDER BY "
      "meter.recalid DESC";
  script_->answer(lookUp, {{"id", "meterid", "recalid", "serialnumberadjusted"},
                           {{std::int64_t{7}, std::int64_t{3}, std::int64_t{2}, Value()}}});
  script_->answer("Select roshko, strouhal from raw1 where seriesID = 7",
                  test::pointRows({{1, 2}, {3, 4}}));
  data_.Unattended = true;
  bool isEmpty = false;
  double from = 0;
  double to = 9;
  data_.determineFittedCurve("Ratio", "4711", isEmpty, from, to, "X", "Y", false);
  expectOwn({"read " + lookUp, "read Select roshko, strouhal from raw1 where seriesID = 7",
             "read Select roshko, strouhal from raw2 where seriesID = 7",
             "read Select roshko, strouhal from raw3 where seriesID = 7",
             "read Select roshko, strouhal from raw4 where seriesID = 7"});
  data_.determineFittedCurve("Ratio", "4711", isEmpty, from, to, "X", "Y", false, -2);
  expectOwn(
      {"read SELECT series.*, meter.recalid, meter.serialnumberadjusted from series left join "
       "meter on "
       "series.meterid=meter.id where series.name = 'Ratio' and meter.serialnumber='4711' and "
       "meter.recalid=-2"});
}

TEST_F(statement_texts, of_SetFitted) {
  haveSeries();
  data_.SetFitted("Ratio", "4711", {{5, 6}, {7, 8}}, {{1, 2}, {3, 4}}, "report", false);
  expectOwn({"read " + latestSeries, "execute DELETE from curve where seriesID = 7",
             "execute DELETE from DataFitResults where seriesID = 7",
             "execute DELETE from merge where seriesid = 7",
             "batch Select * from curve where seriesID = 7", "add seriesID=7 Roshko=1 Strouhal=2",
             "add seriesID=7 Roshko=3 Strouhal=4", "update batch",
             "cursor 2 lock 3 Select * from DataFitResults where seriesID = 7",
             "add seriesID=7 summary=report", "batch Select * from merge where seriesid = 7",
             "add seriesID=7 Roshko=5 Strouhal=6", "add seriesID=7 Roshko=7 Strouhal=8",
             "update batch"});
}

TEST_F(statement_texts, of_getFittedCurve) {
  haveSeries();
  const std::vector<std::string> others{
      "read Select roshko, strouhal from merge where seriesID = 7",
      "read Select summary from datafitresults where seriesID = 7"};
  data_.getFittedCurve("Ratio", "4711");
  expectOwn({"read " + latestSeries, "read Select roshko, strouhal from curve where seriesID = 7",
             others[0], others[1]});
  data_.getFittedCurve("Ratio", "4711", {}, -1, true);
  expectOwn({"read " + latestSeries,
             "read Select roshko, strouhal from curve where seriesID = 7 ORDER BY Strouhal ASC",
             others[0], others[1]});
}

TEST_F(statement_texts, of_GetAllInfo) {
  haveSeries();
  data_.GetAllInfo("Ratio", "4711");
  expectOwn({"read " + latestSeries, "read Select roshko, strouhal from raw1 where seriesID = 7",
             "read Select roshko, strouhal from raw2 where seriesID = 7",
             "read Select roshko, strouhal from raw3 where seriesID = 7",
             "read Select roshko, strouhal from raw4 where seriesID = 7",
             "read Select roshko, strouhal from curve where seriesID = 7 ORDER BY Roshko ASC",
             "read Select roshko, strouhal from merge where seriesID = 7",
             "read Select summary from datafitresults where seriesID = 7"});
}

TEST_F(statement_texts, of_ImportCurvedData) {
  const test::ScratchFolder scratch;
  std::ofstream(scratch.file("results"), std::ios::binary) << "1\r\n2\r\n3\r\n3 4\r\n1 2\r\n";
  haveSeries();
  bool isEmpty = true;
  data_.ImportCurvedData(scratch.file("results"), "Ratio", "4711", isEmpty);
  expectOwn({"read " + latestSeries, "execute DELETE from curve where seriesID = 7",
             "batch Select * from merge where seriesID = 7", "add seriesID=7 Roshko=1 Strouhal=2",
             "add seriesID=7 Roshko=3 Strouhal=4", "update batch"});
}

TEST_F(statement_texts, of_importCaldb) {
  haveMeter();
  const std::string setup =
      "SELECT CalSetup.* FROM Fluids RIGHT JOIN CalSetup ON Fluids.ID = CalSetup.FluidID WHERE "
      "(((Fluids.Name)='Oil') AND ((CalSetup.MeterID)=3));";
  script_->answer(setup, {});
  haveId(setup, 9);
  haveId("Select * from fluids where name = 'Oil'", 4);
  script_->answer("Select * from Operator where name = 'Unknown'", {});
  haveId("Select * from Operator where name = 'Unknown'", 5);
  haveId("Select ID from CalSetup where meterID=3 ORDER BY stand, ID ASC", 9);
  script_->answer(
      "Select DISTINCT JobRecordID from CalDataPoint where CalSetupID=9 ORDER BY JobRecordID ASC",
      {{"JobRecordID"}, {{std::int64_t{1001}}}});
  for (const auto& [name, id] : std::map<std::string, int>{
           {"Rotor A", 7}, {"Rotor B", 8}, {"Rotor Sum", 10}, {"Ratio", 11}}) {
    haveId("select * from series where name = '" + name + "' and meterid=3", id);
  }
  const auto standLog = std::make_shared<Log>();
  const auto stand = std::make_shared<test::RecordingConnection>(
      std::make_shared<test::ScriptedConnection>(script_), standLog);
  data_.importCaldb("4711", stand, {"1001"}, {"0"}, {"Oil"}, {""}, true, true, true, true, 1, 2);

  std::string columns = "JobRecordID";
  for (int i = 1; i <= 37; ++i) columns += ", V" + std::to_string(i);
  EXPECT_EQ(*standLog, (Log{"open",
                            "execute INSERT INTO CalDataPoint ( CalSetupID, " + columns +
                                " ) IN 'c:\\curves.mdb'SELECT 9 as CalSetupID, " + columns +
                                " FROM DataPoint WHERE (((JobRecordID)=1001));",
                            "close"}));
  const std::string a = "[v4]/[v3]/[v5]*(1+((1.92E-05)*([v12]-70)))";
  const std::string b = "[v21]/[v20]/[v5]*(1+((1.92E-05)*([v12]-70)))";
  const auto derived = [](int id, const std::string& roshko, const std::string& strouhal,
                          const std::string& column) {
    return "execute INSERT INTO Raw1 ( seriesID,   Roshko,   Strouhal ) SELECT " +
           std::to_string(id) + " AS SeriesID, " + roshko + " AS Roshko, " + strouhal +
           " AS Strouhal FROM CalDataPoint WHERE "
           "(((CalDataPoint." +
           column + ")=9));";
  };
  expectOwn({"read " + latestMeter,
             "read " + setup,
             "read Select * from fluids where name = 'Oil'",
             "read Select * from Operator where name = 'Unknown'",
             "execute Insert into Operator (Name) VALUES ('Unknown')",
             "requery",
             "execute Insert into Calsetup "
             "(meterID,Stand,MeterPosition,OperatorID,FluidID,DateTaken) VALUES"
             "(3,1,2,5,4,#" +
                 todayText() + "#)",
             "requery",
             "execute Delete * from CalDataPoint where CalDataPoint.calsetupid=9",
             "read Select ID from CalSetup where meterID=3 ORDER BY stand, ID ASC",
             "read Select DISTINCT JobRecordID from CalDataPoint where CalSetupID=9 ORDER BY "
             "JobRecordID ASC",
             "read select * from series where name = 'Rotor A' and meterid=3",
             "execute Delete From Raw1 where seriesID=7",
             derived(7, a, "([v4]/[v3])/([v2]/[v1])*(1+((2.88E-05)*([v12]-70)))", "calSetupID"),
             "read select * from series where name = 'Rotor B' and meterid=3",
             "execute Delete From Raw1 where seriesID=8",
             derived(8, b, "([v21]/[v20])/([v2]/[v1])*(1+((2.88E-05)*([v12]-70)))", "calSetupID"),
             "read select * from series where name = 'Rotor Sum' and meterid=3",
             "execute Delete From Raw1 where seriesID=10",
             derived(10, "(" + a + ") + (" + b + ")", "([v4]/[v3])/([v21]/[v20])", "CalSetupID"),
             "read select * from series where name = 'Ratio' and meterid=3",
             "execute Delete From Raw1 where seriesID=11",
             derived(11, "(" + a + ") + (" + b + ")", "([v21]/[v20])/([v4]/[v3])", "CalSetupID")});
}

}  // namespace
}  // namespace pelmora
