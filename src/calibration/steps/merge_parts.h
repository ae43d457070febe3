// Merging the raw parts of a series.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/steps/observer.h"

#include <pelmora/band_tester.h>
#include <pelmora/types.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::calibration::steps {

// A point of a raw part. Parts count from 1, and so do points, in the order in which the part was
// read.
struct PartPoint {
  std::int16_t Part = 0, Number = 0;
  double Roshko = 0, Strouhal = 0;
  bool operator==(const PartPoint&) const = default;
};

// The points so far, where each of them comes from, and what was cut on the way.
struct MergedPoints {
  PointArray Points;
  std::vector<PartPoint> Origins;  // one per point
  std::vector<PartPoint> Cut;      // in the order in which they went
};

// One raw part, as it was read.
[[nodiscard]] MergedPoints asPart(std::int16_t part, PointArray points);

// Sorts a part by Roshko, after a text. False for fewer than two points: they count as none and
// stay as they are.
bool sortPart(MergedPoints& part, const std::string& SeriesName, const Observer& observer = {});

// How the next part, 1 to 4, joins the points so far.
enum class Joining { take, merge, refuse };  // refuse: one merged point and a fourth part
[[nodiscard]] Joining howToJoin(const PointArray& merged, std::int16_t part);

struct MergeSettings {
  bool Inverted = false;    // compares on negated Roshko values
  bool RatioCurve = false;  // drops points at which Roshko rises with Strouhal
  std::string SeriesName;   // in texts
  // Makes the tester of the cut. Errors: Error 429 if it is empty or delivers nothing.
  std::function<std::unique_ptr<BandTester>()> createBandTester;
  // Of the cut, in per cent, until the first point outside; from then on 45 % of it. Absent: 0.1
  // and 0.045, what hosts know.
  std::optional<float> BandPercent = {};
  bool Cuts = true;  // false: every point is kept, those at which a ratio rises too
};

// Merges the points so far (A) with the next raw part (B): of the part that reaches further, the
// trailing points that disagree with the other part are cut; both are then joined and sorted by
// Roshko.
//
// A, B:   sorted by Roshko.
// Errors: Error 9 if one has no points, 6 for more than 32767 points, 429 without a tester.
[[nodiscard]] MergedPoints mergeParts(MergedPoints A, MergedPoints B, const MergeSettings& settings,
                                      const Observer& observer = {});

}  // namespace pelmora::calibration::steps
