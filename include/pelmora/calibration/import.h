// Importing what a stand has measured.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/stand.h>
#include <pelmora/calibration/values.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace pelmora::calibration {

struct ImportOptions {
  // Into a new calibration of the meter rather than the one that was named.
  bool newCalibration = false;
  std::int16_t stand = -1, position = -1;  // numbers that are kept with the runs
};

struct DerivedSeries {
  std::string name;
  std::int32_t id = 0;
  std::array<std::size_t, 4> points{};  // of raw parts 1 to 4
};

struct Imported {
  Meter meter;
  bool isNewCalibration = false;  // of a meter that was unknown, or that ImportOptions asked for
  std::vector<Run> runs;          // of the calibration, those of earlier imports too
  std::vector<DerivedSeries> series;
  std::string jobWithoutRotorB;  // because of which only Rotor A was derived; empty where all have
  std::vector<HistoryEntryId> kept;
};

struct StoredPoints {
  std::int32_t seriesID = 0;
  bool isNewSeries = false;
  HistoryEntryId kept = 0;  // the points of that part before
};

}  // namespace pelmora::calibration
