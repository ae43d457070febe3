// A fingerprint of raw points, for whoever wants to know whether they are still the same.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/values.h>

#include <span>
#include <string>

namespace pelmora::report {

// SHA-256, in hexadecimal, of one line for each raw point in stored order: series name, raw part (1
// to 4), Roshko and Strouhal with 17 significant digits (as printf's %.17g), separated by tabs,
// each line ended by LF; series as given, parts in order.
[[nodiscard]] std::string rawDataHash(std::span<const calibration::StoredSeries* const> series);

}  // namespace pelmora::report
