// What a damaged file still holds, for people and as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/salvage.h>

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace pelmora::cli {

[[nodiscard]] std::string salvageText(const SalvageReport& report);
[[nodiscard]] nlohmann::json salvageJson(const SalvageReport& report);

[[nodiscard]] std::string integrityText(const std::vector<IntegrityProblem>& problems);
[[nodiscard]] nlohmann::json integrityJson(const std::vector<IntegrityProblem>& problems);

// "M1, calibration 0, series 'Rotor A'".
[[nodiscard]] std::string nameOf(const SalvagedSeries& series);

}  // namespace pelmora::cli
