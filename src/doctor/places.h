// Naming a place of a curve database to people.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>

#include <cstdint>
#include <string>

namespace pelmora::doctor {

// "series 'Rotor A' of meter 'M1', calibration 0"; "series 7, which is missing".
[[nodiscard]] std::string seriesPlace(const ConnectionPtr& curves, std::int64_t seriesID);

}  // namespace pelmora::doctor
