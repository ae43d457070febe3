// Merging the raw parts of a fit.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/fit.h>

#include <span>

namespace pelmora::calibration {

// Fills `rawPoints`, `merged` and `cut` of the fit by its settings.
//
// Errors: BadData and Cancelled as for fit().
void mergeRawParts(Fit& fit, std::span<const PointArray> parts, const Observer& observer);

}  // namespace pelmora::calibration
