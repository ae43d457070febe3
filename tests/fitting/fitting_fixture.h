// An apartment with a scripted database, engine and band tester, and one journal for everything that happens.
// SPDX-License-Identifier: MIT
#pragma once

#include "engine/clsDataFit.h"
#include "fitting/fit_host.h"
#include "store/operation_context.h"
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
#include <vector>

namespace pelmora {

// The host's object as a fit sees it.
class FakeHost : public FitHost {
 public:
  explicit FakeHost(test::Journal& into) : journal_(into) {}
  FitSettings settings() const override { return current; }
  void attachFitting(clsDataFit* fitting) override {
    attached = fitting;
    if (fitting == nullptr) return;
    fitting->Progress = [this](std::int16_t step, std::int16_t steps) {
      journal_.push_back("progress: " + std::to_string(step) + "/" + std::to_string(steps));
    };
    fitting->StatusUpdate = [this](const std::string& text) { journal_.push_back("status: " + text); };
  }
  void takeResult(const std::string& text, FitOutcome) override { details = text; }

  FitSettings current;
  clsDataFit* attached = nullptr;
  std::string details = "of an earlier fit";

 private:
  test::Journal& journal_;
};

// Journal lines: those of RecordingConnection, "status: ", "progress: ", "fit: ", "box: ".
class FittingFixture : public testing::Test {
 protected:
  FittingFixture() {
    Platform& own = platform();
    own.componentFolder = folder_.path().string();
    own.createFitEngine = [this] { return std::make_unique<test::FakeFitEngine>(engine_); };
    own.createBandTester = [this] { return std::make_unique<test::FakeBandTester>(band_); };
    own.createConnection = [this](const std::string&) { return connection(); };
    shared_.location.FullPath = "curves.db";
    host_.current.NumberOfFittedPoints = 3;
    writeFile("equations.txt", "A\tf(x)");
  }

  void writeFile(const std::string& name, const std::string& text) const {
    std::ofstream(folder_.file(name), std::ios::binary) << text;
  }
  ConnectionPtr connection() {
    return std::make_shared<test::RecordingConnection>(
        std::make_shared<test::ScriptedConnection>(script_), log_);
  }
  // Makes the look-up of a series by findMeterInfo find number 7.
  void haveSeries(const std::string& name = "Rotor A") {
    script_->answer(findStatement(name), {{"seriesID", "ID", "ReCalID", "SerialNumberAdjusted"},
                                          {{std::int64_t{7}, std::int64_t{3}, std::int64_t{2},
                                            std::string("4711-A")}}});
  }
  static std::string findStatement(const std::string& name = "Rotor A") {
    return "SELECT TOP 1 series.ID AS seriesID,meter.ID, meter.ReCalID, meter.SerialNumberAdjusted from "
           "series left join meter on series.meterid=meter.id where serialnumber='4711' AND series.name "
           "= '" + name + "' ORDER BY ReCalID DESC";
  }
  test::Journal boxes() const { return test::linesOf(*log_, "box: "); }
  test::Journal statusTexts() const { return test::linesOf(*log_, "status: "); }
  // Whether every connection that was opened was closed.
  bool isClosed() const {
    return test::linesOf(*log_, "open").size() == test::linesOf(*log_, "close").size();
  }
  test::Journal executed() const { return test::linesOf(*log_, "execute "); }

  std::shared_ptr<test::Log> log_ = std::make_shared<test::Log>();
  test::Journal& journal_ = *log_;
  test::RecordingPlatform recording_{journal_};
  test::ScratchFolder folder_;
  test::FakeFitScript engine_{journal_};
  test::FakeBandScript band_{journal_};
  std::shared_ptr<test::Script> script_ = std::make_shared<test::Script>();
  SharedState shared_;
  FakeHost host_{journal_};
  OperationContext context_{shared_, platform(), [this](const std::string& text) {
                              journal_.push_back("status: " + text);
                            }};
};

}  // namespace pelmora
