// The jobs of a fleet, for people and for programs.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/fleet.h>

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace pelmora::cli {

// A line or two about a job; its progress.
[[nodiscard]] std::string jobText(const calibration::FleetStatus& job);
// The same, with the curves that changed and the series without a new curve among `results`.
[[nodiscard]] std::string jobText(const calibration::FleetStatus& job,
                                  const std::vector<calibration::RefitResult>& results);
[[nodiscard]] nlohmann::json jobJson(const calibration::FleetStatus& job);

}  // namespace pelmora::cli
