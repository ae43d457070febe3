// A meter's drift as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/meter_drift.h"

#include <nlohmann/json_fwd.hpp>

namespace pelmora::cli {

// Without the names of database, meter and series, which the caller adds.
[[nodiscard]] nlohmann::json driftJson(const MeterDrift& result);

}  // namespace pelmora::cli
