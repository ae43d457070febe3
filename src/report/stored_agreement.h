// Whether what is stored of a series fits together: raw points, merged points, curve and settings.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/values.h>

#include <cstddef>
#include <optional>

namespace pelmora::report {

// Two fits of the same points on two machines differ in their last digits; a curve that differs by
// more than a ten-thousandth of a per cent came from other points, settings or software.
inline constexpr double sameCurvePercent = 1e-4;

// How many merged points are not among the raw ones. A point that was merged twice has to be raw
// twice.
[[nodiscard]] std::size_t mergedPointsNotRaw(const calibration::StoredSeries& stored);

// The largest distance of two tables of Roshko and Strouhal numbers, in per cent of `stored`.
// Nothing if the tables cannot be compared: they have no points or different numbers of them, their
// Roshko columns differ by more than sameCurvePercent, or a distance is not a number.
//
// Shape: as many rows as points, two columns.
[[nodiscard]] std::optional<double> largestDistancePercent(const PointArray& stored,
                                                           const PointArray& refit);

}  // namespace pelmora::report
