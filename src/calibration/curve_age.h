// Telling whether a stored curve still belongs to the raw points of its series.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/values.h>

#include <span>
#include <string>

namespace pelmora::calibration {

// Sixteen hexadecimal digits made from every bit of the points, in their order. The same on every
// machine and for every database, so that it can be kept.
[[nodiscard]] std::string fingerprintOf(std::span<const PointArray> parts);

// By the fingerprints kept with the curve. Without them, or if they belong to another curve, by the
// merged points: one that is in no raw part, or a raw part of which none was taken, shows that the
// points have changed; otherwise the age is unknown.
[[nodiscard]] CurveAge ageOf(const StoredSeries& series);

}  // namespace pelmora::calibration
