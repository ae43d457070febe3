// Merging the raw parts of a fit.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/fit.h>

#include <span>
#include <vector>

namespace pelmora::calibration {

// Fills `rawPoints`, `merged` and `cut` of the fit by its settings.
//
// Errors: BadData and Cancelled as for fit().
void mergeRawParts(Fit& fit, std::span<const PointArray> parts, const Observer& observer);

// What the merge leaves out of the stored points with the settings of the stored curve, a part of a
// single point included. Nothing if the parts cannot be merged.
[[nodiscard]] std::vector<CutPoint> cutByMerge(const StoredSeries& series);

}  // namespace pelmora::calibration
