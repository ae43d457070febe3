// How a meter's curve has changed over its calibrations.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/session.h"

#include <pelmora/calibration/drift.h>

#include <string>
#include <vector>

namespace pelmora::cli {

struct MeterDrift {
  calibration::Drift drift;
  std::vector<std::string> notes;  // calibrations that are left out, and curves that are old
};

// Errors: as for calibration::driftOf().
[[nodiscard]] MeterDrift meterDrift(Session& session, const std::string& meter,
                                    const std::string& series,
                                    const calibration::DriftOptions& options);

}  // namespace pelmora::cli
