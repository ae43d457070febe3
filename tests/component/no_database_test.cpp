// Every member without a database: the error box of its operation, and its documented result.
// SPDX-License-Identifier: MIT
#include "tests/component/component_fixture.h"

namespace pelmora {
namespace {

using test::Journal;

class no_database : public ComponentFixture {
 protected:
  no_database() {
    platform().createConnection = [](const std::string&) -> ConnectionPtr {
      throw Error(53, "driver", "no such file");
    };
  }
  static Journal box(const std::string& operation) { return {operation + "\r\nno such file|16|"}; }
};

TEST_F(no_database, findMeterInfo_shows_its_box_and_finds_nothing) {
  const MeterInfo meter = data_->findMeterInfo("4711");
  EXPECT_EQ(meter.Source, -1);
  EXPECT_TRUE(meter.Series.empty());
  EXPECT_EQ(boxes(), box("Error in RawData:findMeterInfo"));
}

TEST_F(no_database, FindLastCalID_shows_its_box_and_finds_nothing) {
  const MeterInfo meter = data_->FindLastCalID("4711");
  EXPECT_EQ(meter.Source, -1);
  EXPECT_EQ(meter.MeterID, 0);
  EXPECT_EQ(boxes(), box("Error in RawData:LastCalID"));
}

TEST_F(no_database, Series_shows_its_box_and_finds_nothing) {
  EXPECT_TRUE(data_->Series("4711").empty());
  EXPECT_EQ(boxes(), box("Error in RawData:series"));
}

TEST_F(no_database, MetersAdjusted_shows_its_box_and_finds_nothing) {
  std::vector<std::int16_t> recals{1, 2};
  EXPECT_TRUE(data_->MetersAdjusted("4711", isEmpty_, recals).empty());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(recals, (std::vector<std::int16_t>{1, 2}));
  EXPECT_EQ(boxes(), box("Error in RawData:meters"));
}

TEST_F(no_database, Meters_shows_its_box_and_finds_nothing) {
  EXPECT_TRUE(data_->Meters(isEmpty_).empty());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(boxes(), box("Error in RawData:meters"));
}

TEST_F(no_database, DeleteSeries_shows_its_box_and_returns_false) {
  EXPECT_FALSE(data_->DeleteSeries("4711", "Rotor A"));
  EXPECT_EQ(boxes(), box("Error in RawData:series"));
}

TEST_F(no_database, setMeterSN_shows_its_box_and_returns_0) {
  EXPECT_EQ(data_->setMeterSN("4711"), 0);
  EXPECT_EQ(boxes(), box("Error in RawData:setMeterSN"));
  EXPECT_EQ(statusTexts(), Journal{"Saving meter serial number 4711"});
}

TEST_F(no_database, getJobID_shows_its_box_and_finds_nothing) {
  EXPECT_TRUE(data_->getJobID("4711").empty());
  EXPECT_EQ(boxes(), box("Error in RawData:getJobID"));
}

TEST_F(no_database, SetRaw_shows_its_box_and_returns_false) {
  EXPECT_FALSE(data_->SetRaw("Rotor A", "4711", {{1, 2}}, 0, false));
  EXPECT_EQ(boxes(), box("Error in RawData:SetRaw"));
}

TEST_F(no_database, GetRaw_shows_its_box_and_reads_nothing) {
  const MeterInfo meter = data_->GetRaw("Rotor A", "4711", 1);
  EXPECT_TRUE(meter.Series.empty());
  EXPECT_EQ(boxes(), box("Error in RawData:GetRaw"));
}

TEST_F(no_database, copyCaldb_without_a_stand_shows_its_box_and_returns_false) {
  EXPECT_FALSE(data_->copyCaldb(1, "10", "", nullptr, nullptr));
  EXPECT_EQ(boxes(),
            Journal{"Error in RawData:copyCaldb\r\nObject variable or With block variable not "
                    "set|16|"});
}

TEST_F(no_database, importCaldb_shows_its_box_and_brings_nothing) {
  const MeterInfo meter = data_->importCaldb("4711", nullptr, {"1"}, {""}, {"oil"}, {"me"});
  EXPECT_TRUE(meter.Series.empty());
  EXPECT_EQ(meter.Source, -1);
  EXPECT_EQ(boxes(), Journal{"Error in modFlow:copyCalData \r\nno such file|16|Error driver"});
}

TEST_F(no_database, importCaldb_without_runs_is_silent) {
  EXPECT_EQ(data_->importCaldb("4711", nullptr, {}, {}, {}, {}), MeterInfo());
  EXPECT_EQ(data_->importCaldb("4711", nullptr, {"1", "2"}, {""}, {"oil"}, {"me"}), MeterInfo());
  EXPECT_EQ(journal_, Journal());
}

TEST_F(no_database, determineFittedCurve_shows_its_box_and_fits_nothing) {
  isEmpty_ = true;
  EXPECT_EQ(fit(), PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(boxes(), box("Error in RawData:determineFittedCurve"));
}

TEST_F(no_database, SetFitted_shows_its_box_and_returns_false) {
  EXPECT_FALSE(data_->SetFitted("Rotor A", "4711", {{1, 2}}, {{1, 2}}, "report", false));
  EXPECT_EQ(boxes(), box("Error in RawData:SetRaw"));
}

TEST_F(no_database, SetLastFitted_shows_its_box_and_returns_false) {
  EXPECT_FALSE(data_->SetLastFitted(false));
  EXPECT_EQ(boxes(), box("Error in RawData:SetRaw"));
}

TEST_F(no_database, getFittedCurve_shows_its_box_and_reads_nothing) {
  EXPECT_TRUE(data_->getFittedCurve("Rotor A", "4711").Series.empty());
  EXPECT_EQ(boxes(), box("Error in RawData:getFittedCurve"));
}

TEST_F(no_database, GetAllInfo_shows_its_box_and_reads_nothing) {
  EXPECT_TRUE(data_->GetAllInfo("Rotor A", "4711").Series.empty());
  EXPECT_EQ(boxes(), box("Error in RawData:GetRaw"));
}

TEST_F(no_database, readTCresults_needs_none) {
  writeFile("fit.txt", "1\r\n2\r\n3\r\n1 2\r\n");
  EXPECT_EQ(data_->readTCresults(folder_.file("fit.txt"), isEmpty_), (PointArray{{1, 2}}));
  EXPECT_FALSE(isEmpty_);
}

TEST_F(no_database, ImportCurvedData_shows_its_box_and_brings_nothing) {
  writeFile("fit.txt", "1\r\n2\r\n3\r\n1 2\r\n");
  EXPECT_EQ(data_->ImportCurvedData(folder_.file("fit.txt"), "Rotor A", "4711", isEmpty_),
            PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(boxes(), box("Error in RawData:ImportCurvedData"));
}

TEST_F(no_database, accessors_need_none) {
  EXPECT_EQ(data_->LastMergedArray(), PointArray());
  EXPECT_EQ(data_->LastFittedArray(), PointArray());
  EXPECT_EQ(data_->dbDir().Drive, "c:");
  EXPECT_EQ(data_->BandPercent(), 0.0F);
  EXPECT_EQ(journal_, Journal());
}

TEST_F(no_database, empty_location_is_an_error_of_its_own) {
  data_->dbDirSetByString("");
  data_->findMeterInfo("4711");
  data_->importCaldb("4711", nullptr, {"1"}, {""}, {"oil"}, {"me"});
  EXPECT_EQ(boxes(), (Journal{"Error in RawData:findMeterInfo\r\nEmpty database location|16|",
                              "Error in modFlow:copyCalData \r\nEmpty database location|16|Error "
                              "Pelmora:getConnection"}));
}

}  // namespace
}  // namespace pelmora
