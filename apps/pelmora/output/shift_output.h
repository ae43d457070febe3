// Shifts between calibrations as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/drift.h>

#include <nlohmann/json_fwd.hpp>

#include <optional>

namespace pelmora::cli {

// Null for a shift whose uncertainty is not known.
[[nodiscard]] nlohmann::json judgedShiftJson(const std::optional<calibration::CurveShift>& shift);

}  // namespace pelmora::cli
