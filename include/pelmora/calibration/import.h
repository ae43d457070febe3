// Importing a stand's measurements.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/points.h>
#include <pelmora/calibration/stand.h>
#include <pelmora/calibration/values.h>
#include <pelmora/export.h>
#include <pelmora/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace pelmora::calibration {

struct ImportOptions {
  // Import into a new calibration of the meter rather than the given one.
  bool newCalibration = false;
  std::int16_t stand = -1, position = -1;  // numbers that are stored with the runs
  std::string date = {};                   // of the runs, as 2026-11-21; empty: today
  // Also set the operator, stand, position and date above for runs whose fluid the calibration
  // already has. Otherwise those runs keep their own, and Imported::keptEntries lists them.
  bool update = false;
};

// An entry that a run of a known fluid has kept although the import gave another one.
struct KeptEntry {
  std::string fluid;
  std::string what;  // "operator", "stand", "position", "date"
  std::string kept, given;
};

struct DerivedSeries {
  std::string name;
  std::int32_t id = 0;
  std::array<std::size_t, 4> points{};  // of raw parts 1 to 4
};

struct Imported {
  Meter meter;
  bool isNewCalibration = false;  // the meter was unknown, or ImportOptions requested it
  std::vector<Run> runs;          // all runs of the calibration, with those of earlier imports
  std::vector<DerivedSeries> series;
  std::string jobWithoutRotorB;   // the reason why only Rotor A was derived; empty if there is none
  std::size_t excludedAgain = 0;  // points that are still excluded
  std::vector<DroppedExclusion> dropped;  // exclusions of points that the import did not contain
  std::vector<KeptEntry> keptEntries;
  std::vector<std::string> doubts;  // readings that put a run far from the meter's other runs
  std::vector<HistoryEntryId> kept;
};

// A point whose Roshko number is at least 1,000 times larger or smaller than those of the other
// points of its part.
struct FarPoint {
  std::size_t index = 0;  // in the order of the points
  double factor = 1;      // its Roshko number over the median of the others
};

struct StoredPoints {
  std::int32_t seriesID = 0;
  bool isNewSeries = false;
  HistoryEntryId kept = 0;   // the entry of the part's previous points
  std::size_t excluded = 0;  // points of the part that are still excluded
  std::vector<DroppedExclusion> dropped;
  // Roshko over that of the meter's nearest other raw part; 1 unless they differ by a factor of
  // 10,000 or more.
  double farFactor = 1;
  std::vector<FarPoint> farPoints;
};

// The points of a result file of the outside program TableCurve: three header lines, then Roshko
// and Strouhal in each line, separated by blanks, in the number format of the process's locale;
// each line ends in CR LF. Sorted by Roshko.
//
// place: what a message calls the text, for example "file 'results.txt'".
// Errors: BadData, with the line, for anything else, and for fewer than two points.
[[nodiscard]] PELMORA_API PointArray resultPoints(const std::string& text,
                                                  const std::string& place);

}  // namespace pelmora::calibration
