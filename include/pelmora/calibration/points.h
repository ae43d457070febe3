// The raw points of a series, and leaving some of them out.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/values.h>

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::calibration {

enum class PointState {
  used = 0,          // the merge takes it, and it lies in the range
  cut = 1,           // left out by the merge
  excluded = 2,      // left out by a person
  outsideRange = 3,  // beyond the ends of the stored curve, or of the range that was fitted
  distrusted = 4,    // contradicts the others; the stored curve was fitted without it
};

// "used", "cut", "excluded", "outside range", "distrusted": the names in JSON, which never change.
[[nodiscard]] PELMORA_API const char* pointStateKey(PointState state);

// What the stand measured at a point, in the stand's own units; absent where it recorded no number.
struct StandReading {
  // Of the series' rotor; the sum of both frequencies if the series is derived from both rotors.
  std::optional<double> frequency{};
  std::optional<double> flow{};  // of the reference
  std::optional<double> viscosity{}, temperature{};
  // From the column that the laboratory names for the nominal flow (details.h).
  std::optional<double> nominalFlow{};
};

// A raw point as it is listed. `number` is its place in the whole part: it stays the same while
// other points are excluded and included.
struct RawPoint {
  int part = 0;            // 1 to 4
  std::size_t number = 0;  // from 1
  std::string job, fluid;  // of the stand's run; empty for points that came from elsewhere
  double roshko = 0, strouhal = 0;
  // From the stored curve, in per cent; absent without one and beyond its ends.
  std::optional<double> residualPercent{};
  // How far it lies off the smooth curve through all other points that are used, in standard
  // deviations of a good point (solver/reference); absent if there are too few points for it.
  std::optional<double> sigmas{};
  // The other points contradict this one: `sigmas` is large. If the stored curve was chosen by the
  // rule Choice::trusted, its fit left the point out, and the state says so.
  bool isDistrusted = false;
  PointState state = PointState::used;
  std::optional<Exclusion> exclusion{};
  // For a cut point: how far off the merged points it lies.
  std::optional<double> cutPercent{};
  std::optional<StandReading> reading{};  // absent if the point did not come from a stand
};

// Points of one series: everything that any of the members selects.
//
//   {.part = 1, .numbers = {3, 4}}       two points of part 1
//   {.part = 2, .below = 12.5}           the low end of part 2
//   {.between = {{100, 110}}}            from 100 to 110, in all parts
struct PointSelection {
  std::optional<int> part{};           // 1 to 4; absent: all parts
  std::vector<std::size_t> numbers{};  // needs a part
  // Roshko. `between` includes its ends, `below` and `above` do not.
  std::optional<double> below{}, above{};
  std::optional<std::pair<double, double>> between{};
  bool all = false;  // of the part, or of the series
};

struct ExclusionOptions {
  // Other series of the calibration from which the points with the same part and number are left
  // out, or taken back, too.
  std::vector<std::string> alsoIn{};
  // The same for every series that was derived from the same readings. Without it, the curve of a
  // series that nobody named stays as it is.
  bool inDerivedSeries = false;
};

struct ChangedPoint {
  std::string series;
  int part = 0;
  std::size_t number = 0;
  double roshko = 0, strouhal = 0;
  bool operator==(const ChangedPoint&) const = default;
};

// An exclusion that no longer fits the points, so that it was dropped. The history keeps it.
struct DroppedExclusion {
  ChangedPoint point;
  std::string job, reason;
  std::string why;  // one clause
};

struct ExclusionChange {
  std::vector<ChangedPoint> points;  // that have changed sides, by series, part and number
  // Series that were derived from the same readings and still use (or exclude) them.
  std::vector<std::string> sameReadings;
  std::vector<DroppedExclusion> dropped;
  std::vector<HistoryEntryId> kept;
};

}  // namespace pelmora::calibration
