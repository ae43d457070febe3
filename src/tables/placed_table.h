// Tables with their knots where they serve best.
// SPDX-License-Identifier: MIT
#pragma once

#include "tables/sampled_curve.h"
#include "tables/table_reader.h"

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

namespace pelmora::tables {

// The largest error of reading a table instead of its curve, as a share of the curve in per cent.
struct ReadingError {
  double percent = 0;
  double at = 0;  // the x of it
};

struct PlacedTable {
  std::vector<double> x, y;
  ReadingError error;
};

inline constexpr std::size_t mostPoints = 5000;

// `points` knots on the curve, both ends of the range among them, such that the largest reading
// error is as small as possible.
//
// Linear and logarithmic reading: bisection on the error, each segment being as long as that error
// allows; all segments then err equally. On a curve without wiggles much shorter than a segment
// this is the smallest possible error; with them it is an upper limit of it. Cubic reading: the
// knots are moved towards the segments that err most until nothing is won any more.
//
// goOn: called often while linear and logarithmic tables are made; what it throws ends the work.
// Units:  x > 0 in any unit; y in any.
// Errors: BadData for fewer than fewestPoints(reading) or more than mostPoints points; as
//         SampledCurve.
//
//   const PlacedTable table = placeTable(curve, {1.2, 900}, 16, Reading::linear);
[[nodiscard]] PlacedTable placeTable(const Curve& curve, Range range, std::size_t points,
                                     Reading reading, const std::function<void()>& goOn = {});

// The shortest such table whose error is at most `mostPercent`: how many points a reading error
// takes.
//
// Errors: as placeTable; OutOfRange if mostPoints do not suffice.
[[nodiscard]] PlacedTable shortestTable(const Curve& curve, Range range, double mostPercent,
                                        Reading reading);

// Knots evenly spaced in ln x, for comparison.
//
// Errors: as placeTable.
[[nodiscard]] PlacedTable evenTable(const Curve& curve, Range range, std::size_t points,
                                    Reading reading);

// Of any table within its own ends, by a thousand places and more along the curve.
//
// Errors: as TableReader and SampledCurve.
[[nodiscard]] ReadingError readingError(const Curve& curve, std::span<const double> x,
                                        std::span<const double> y, Reading reading);

}  // namespace pelmora::tables
