// Two threads are two apartments: whole calibrations side by side give what one alone gives.
// SPDX-License-Identifier: MIT
#include "tests/support/csv_table.h"
#include "tests/support/scratch_folder.h"

#include <pelmora/pelmora.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <latch>
#include <string>
#include <thread>
#include <vector>

namespace pelmora::test {
namespace {

// What one apartment saw of one calibration.
struct Calibration {
  std::vector<MeterInfo> series;
  std::vector<std::string> boxes, texts;
  DatabaseLocation location;
};

// From the stand to four stored curves, in a database of its own.
Calibration calibrate(const std::string& meter) {
  const ScratchFolder scratch;
  const std::string path = scratch.file("curves.db");
  createCurveDatabase(path);
  Calibration seen;
  platform().messageBox = [&](const std::string& text, int, const std::string&) {
    seen.boxes.push_back(text);
    return 5;  // Ignore
  };
  platform().componentFolder = scratch.path().string();

  RawData data;
  data.dbDirSetByString(path);
  data.BandPercent(2);
  data.NumberOfFittedPoints = 60;
  data.StatusUpdate = [&](const std::string& text) { seen.texts.push_back(text); };
  data.importCaldb(meter, openDatabase(exampleData("stand-dual-rotor.csv")), {"1001"}, {"1001"},
                   {"Spirit"}, {"Me"}, true, true, true, true);
  for (const std::string name : {"Rotor A", "Rotor B", "Rotor Sum", "Ratio"}) {
    data.RatioCurve = name == "Ratio";
    bool isEmpty = true;
    double xMin = 25;
    double xMax = 900;
    data.determineFittedCurve(name, meter, isEmpty, xMin, xMax, "Roshko", "Strouhal", false);
    data.SetLastFitted(isEmpty);
    MeterInfo stored = data.GetAllInfo(name, meter);
    stored.SerialNumber.clear();
    stored.SerialNumberAdjusted.clear();
    seen.series.push_back(std::move(stored));
  }
  seen.location = data.dbDir();
  EXPECT_EQ(seen.location.FullPath, path);
  platform() = Platform();
  return seen;
}

// All at once; every thread calibrates meters of the same name, so that every text is comparable.
std::vector<Calibration> calibrateInThreads(std::size_t count) {
  std::vector<Calibration> seen(count);
  std::latch start(static_cast<std::ptrdiff_t>(count));
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < count; ++i) {
    threads.emplace_back([&seen, &start, i] {
      start.arrive_and_wait();
      seen[i] = calibrate("M1");
    });
  }
  for (std::thread& thread : threads) thread.join();
  return seen;
}

Calibration alone() {
  Calibration seen;
  std::thread([&] { seen = calibrate("M1"); }).join();
  return seen;
}

void expectAsAlone(std::size_t threads) {
  const Calibration expected = alone();
  ASSERT_EQ(expected.series.size(), 4U);
  EXPECT_THAT(expected.boxes, testing::IsEmpty());
  for (const MeterInfo& stored : expected.series) {
    ASSERT_EQ(stored.Series.size(), 1U);
    EXPECT_FALSE(stored.Series.front().Merged.empty());
  }
  EXPECT_EQ(expected.series.front().Series.front().Fitted.size(), 60U);
  for (const Calibration& seen : calibrateInThreads(threads)) {
    EXPECT_EQ(seen.series, expected.series);
    EXPECT_EQ(seen.boxes, expected.boxes);
    EXPECT_EQ(seen.texts, expected.texts);
  }
}

TEST(threads, two_calibrate_as_one_alone) { expectAsAlone(2); }
TEST(threads, eight_calibrate_as_one_alone) { expectAsAlone(8); }

TEST(threads, last_results_are_the_threads_own) {
  std::vector<PointArray> fitted(2);
  std::latch bothFitted(2);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < fitted.size(); ++i) {
    threads.emplace_back([&, i] {
      const ScratchFolder scratch;
      createCurveDatabase(scratch.file("curves.db"));
      RawData data;
      data.dbDirSetByString(scratch.file("curves.db"));
      data.setMeterSN("M");
      data.SetRaw("S", "M", {{1, 2}, {3, 4}}, 0, false);
      data.SetFitted("S", "M", {{1, 2}, {3, 4}}, {{1, 2}, {3, 4}}, "", false);
      const double own = static_cast<double>(i + 1);
      data.SetFitted("S", "M", {{own, 2}, {3, 4}}, {}, "", false);
      data.getFittedCurve("S", "M");
      bothFitted.arrive_and_wait();
      fitted[i] = data.LastMergedArray();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(fitted[0], (PointArray{{1, 2}, {3, 4}}));
  EXPECT_EQ(fitted[1], (PointArray{{2, 2}, {3, 4}}));
}

}  // namespace
}  // namespace pelmora::test
