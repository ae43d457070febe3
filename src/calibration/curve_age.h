// Whether a stored curve still belongs to the raw points of its series.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/values.h>

namespace pelmora::calibration {

// By the fingerprints kept with the curve. Without them, or if they belong to another curve, by the
// merged points: one that is in no raw part, or a raw part of which none was taken, shows that the
// points have changed; otherwise the age is unknown.
[[nodiscard]] CurveAge ageOf(const StoredSeries& series);

}  // namespace pelmora::calibration
