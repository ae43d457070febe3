// A fit by Choice::trusted: the reference curve first, then the simplest equation that agrees.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/steps/merge_parts.h"

#include <pelmora/calibration/fit.h>

#include <functional>
#include <span>

namespace pelmora::calibration {

// Distinct flows that a trusted curve needs.
inline constexpr std::size_t fewestTrustedFlows = 4;

// fit: merged points, settings and range; left with everything that results.
// origins: one per merged point.
//
// Result: false if stopRequested ended the fit.
// Errors: OutOfRange for a range that does not begin above 0; pelmora::Error of the engine.
bool fitTrusted(Fit& fit, std::span<const steps::PartPoint> origins, const steps::Observer& watch,
                const std::function<bool()>& stopRequested);

}  // namespace pelmora::calibration
