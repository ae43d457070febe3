// The measured points of a series in tables.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <string>

namespace pelmora::report {

// Beyond this many points of a series the page lists those that are not used and those that deviate
// most, and says where the others are.
inline constexpr std::size_t mostListedPoints = 400;

[[nodiscard]] std::string htmlPoints(const Report& report, const SeriesReport& series);
// Repeatability and hysteresis at each nominal flow; empty if there are none.
[[nodiscard]] std::string htmlFlows(const Report& report, const SeriesReport& series);

}  // namespace pelmora::report
