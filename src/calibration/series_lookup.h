// Finding the row of a series by its name.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/session.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::calibration {

// In the order in which they were made.
[[nodiscard]] std::vector<std::string> seriesNames(Session& session, const Meter& meter);

[[nodiscard]] std::optional<std::int32_t> findSeries(Session& session, const Meter& meter,
                                                     const std::string& name);

// Errors: NotFound; its remedy suggests similar names.
[[nodiscard]] std::int32_t requireSeries(Session& session, const Meter& meter,
                                         const std::string& name);

}  // namespace pelmora::calibration
