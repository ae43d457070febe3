// The change from one curve to another, as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/types.h>

#include <nlohmann/json_fwd.hpp>

namespace pelmora::cli::workbench {

// Null if either has fewer than two points or they have no range in common:
//
//   {"meanPercent": 0.01, "largest": {"roshko": 12.5, "percent": -0.2}, "shifts": [[roshko, %]
//   ...]}
[[nodiscard]] nlohmann::json comparisonJson(const PointArray& earlier, const PointArray& now);

}  // namespace pelmora::cli::workbench
