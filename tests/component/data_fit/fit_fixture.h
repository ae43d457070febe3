// A fitting object with a scripted engine, a scripted band tester and a folder of its own.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/clsDataFit.h"
#include "tests/support/fake_band_tester.h"
#include "tests/support/fake_fit_engine.h"
#include "tests/support/journal.h"
#include "tests/support/recording_platform.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace pelmora {

class FitFixture : public testing::Test {
 protected:
  FitFixture() {
    platform().componentFolder = folder_.path().string();
    platform().createFitEngine = [this] { return std::make_unique<test::FakeFitEngine>(engine_); };
    platform().createBandTester = [this] { return std::make_unique<test::FakeBandTester>(band_); };
  }

  void writeFile(const std::string& name, const std::string& text) const {
    std::ofstream(folder_.file(name), std::ios::binary) << text;
  }
  // Equations in the order in which they are fitted; the last one named is catalogue entry 0.
  void useEquations(const std::vector<std::string>& names) const {
    std::string text;
    for (const std::string& name : names) text += name + "\tf(" + name + ")\r\n";
    writeFile("equations.txt", text);
  }

  // A fitting object whose events go to the journal: "progress: i/n", "status: text".
  std::unique_ptr<clsDataFit> makeFitting() {
    auto fitting = std::make_unique<clsDataFit>(platform());
    fitting->NumberOfFittedPoints = 3;
    fitting->Progress = [this](std::int16_t step, std::int16_t steps) {
      journal_.push_back("progress: " + std::to_string(step) + "/" + std::to_string(steps));
    };
    fitting->StatusUpdate = [this](const std::string& text) {
      journal_.push_back("status: " + text);
    };
    return fitting;
  }
  PointArray fit(clsDataFit& fitting, double from = 1, double to = 100) {
    return fitting.fitCurve(points_, isEmpty_, from, to, "Roshko", "Strouhal");
  }
  test::Journal boxes() const { return test::linesOf(journal_, "box: "); }
  test::Journal fitted() const { return test::linesOf(journal_, "fit: "); }
  test::Journal statusTexts() const { return test::linesOf(journal_, "status: "); }

  test::Journal journal_;
  test::RecordingPlatform recording_{journal_};
  test::ScratchFolder folder_;
  test::FakeFitScript engine_{journal_};
  test::FakeBandScript band_{journal_};
  PointArray points_{{1, 2}, {10, 4}, {100, 8}};
  bool isEmpty_ = false;
};

}  // namespace pelmora
