// An apartment with a scripted database, engine and band tester, and one journal for everything
// that happens. SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/fake_band_tester.h"
#include "tests/support/fake_fit_engine.h"
#include "tests/support/journal.h"
#include "tests/support/point_rows.h"
#include "tests/support/recording_connection.h"
#include "tests/support/recording_platform.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/scripted_connection.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>

namespace pelmora::test {

// Journal lines: those of RecordingConnection, "fit: ", "band test", "box: "; status texts, where
// the fixture on top writes them, are "status: ". The equation file holds the one equation A. Meter
// 4711 has the id 3 and its series the id 7, where the test makes them known.
class ScriptedApartment : public testing::Test {
 protected:
  ScriptedApartment() {
    Platform& own = platform();
    own.componentFolder = folder_.path().string();
    own.createFitEngine = [this] { return std::make_unique<FakeFitEngine>(engine_); };
    own.createBandTester = [this] { return std::make_unique<FakeBandTester>(band_); };
    own.createConnection = [this](const std::string& location) {
      locations_.push_back(location);
      return connection();
    };
    writeFile("equations.txt", "A\tf(x)");
  }

  void writeFile(const std::string& name, const std::string& text) const {
    std::ofstream(folder_.file(name), std::ios::binary) << text;
  }
  ConnectionPtr connection() {
    return std::make_shared<RecordingConnection>(std::make_shared<ScriptedConnection>(script_),
                                                 log_);
  }

  // The look-ups of a series: by findMeterInfo and by the fit.
  static std::string findStatement(const std::string& name = "Rotor A") {
    return "SELECT TOP 1 series.ID AS seriesID,meter.ID, meter.ReCalID, meter.SerialNumberAdjusted "
           "from "
           "series left join meter on series.meterid=meter.id where serialnumber='4711' AND "
           "series.name "
           "= '" +
           name + "' ORDER BY ReCalID DESC";
  }
  static std::string fitStatement() {
    return "SELECT TOP 1 series.*, meter.recalid, meter.serialnumberadjusted from series left join "
           "meter "
           "on series.meterid=meter.id where series.name = 'Rotor A' and meter.serialnumber='4711' "
           "ORDER "
           "BY meter.recalid DESC";
  }
  static std::string partStatement(int part) {
    return "Select roshko, strouhal from raw" + std::to_string(part) + " where seriesID = 7";
  }
  void haveSeries(const std::string& name = "Rotor A") {
    script_->answer(findStatement(name),
                    {{"seriesID", "ID", "ReCalID", "SerialNumberAdjusted"},
                     {{std::int64_t{7}, std::int64_t{3}, std::int64_t{2}, std::string("4711-A")}}});
  }
  void haveSeriesToFit() {
    script_->answer(fitStatement(), {{"id", "name", "meterid", "recalid", "serialnumberadjusted"},
                                     {{std::int64_t{7}, std::string("Rotor A"), std::int64_t{3},
                                       std::int64_t{2}, std::string("4711-A")}}});
  }
  void havePart(int part, const PointArray& points) {
    script_->answer(partStatement(part), pointRows(points));
  }

  Journal boxes() const { return linesOf(*log_, "box: "); }
  Journal statusTexts() const { return linesOf(*log_, "status: "); }
  Journal executed() const { return linesOf(*log_, "execute "); }
  // Whether every connection that was opened was closed.
  bool isClosed() const { return linesOf(*log_, "open").size() == linesOf(*log_, "close").size(); }

  std::shared_ptr<Log> log_ = std::make_shared<Log>();
  Journal& journal_ = *log_;
  RecordingPlatform recording_{journal_};
  ScratchFolder folder_;
  FakeFitScript engine_{journal_};
  FakeBandScript band_{journal_};
  std::shared_ptr<Script> script_ = std::make_shared<Script>();
  std::vector<std::string> locations_;  // that were opened
};

}  // namespace pelmora::test
