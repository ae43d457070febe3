// Naming a place of a curve database to people.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>

#include <array>
#include <cstdint>
#include <string>

namespace pelmora::doctor {

// Tables of points, each with columns seriesID, Roshko, Strouhal.
inline constexpr std::array<const char*, 4> rawTables{"raw1", "raw2", "raw3", "raw4"};
inline constexpr std::array<const char*, 6> pointTables{"raw1", "raw2",  "raw3",
                                                        "raw4", "merge", "curve"};

// "series 'Rotor A' of meter 'M1', calibration 0"; "series 7, which is missing".
[[nodiscard]] std::string seriesPlace(const ConnectionPtr& curves, std::int64_t seriesID);

}  // namespace pelmora::doctor
