// Merging the raw parts of a fit.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/steps/merge_parts.h"

#include <pelmora/calibration/fit.h>

#include <span>
#include <vector>

namespace pelmora::calibration {

// Fills `rawPoints`, `merged` and `cut` of the fit by its settings.
//
// excluded: the points that were left out of the parts; numbers count them.
// Result: where the merged points come from, one per point.
// Errors: BadData and Cancelled as for fit().
std::vector<steps::PartPoint> mergeRawParts(Fit& fit, std::span<const PointArray> parts,
                                            std::span<const ExcludedPoint> excluded,
                                            const Observer& observer);

// What the merge leaves out of the stored points with the settings of the stored curve, a part of a
// single point included. Nothing if the parts cannot be merged.
[[nodiscard]] std::vector<CutPoint> cutByMerge(const StoredSeries& series);

}  // namespace pelmora::calibration
