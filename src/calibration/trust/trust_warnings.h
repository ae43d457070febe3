// The warnings of a trusted fit: what may be wrong with its points or its table, and what to do.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/trust/reference_judge.h"
#include "curves/table_size.h"

#include <pelmora/calibration/fit.h>

#include <vector>

namespace pelmora::calibration {

// If more points than this contradict the others, only the farthest off are named and the rest are
// counted: a long series may have hundreds.
inline constexpr std::size_t mostNamedPoints = 20;

// Of a fit whose curve was chosen; in the order of the points, then of the ranges.
//
// chosen: the stored curve between the rows of its table.
[[nodiscard]] std::vector<CurveWarning> trustWarnings(const Fit& fit, const ReferenceJudge& judge,
                                                      const CurveSamples& chosen);

}  // namespace pelmora::calibration
