// Units on request: nothing is ever converted silently.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <string>

namespace pelmora::calibration {

// How many `to` make one `from`.
//
// Errors: BadData for an unknown unit, two different quantities, and temperatures, whose scales
//         have different zeros.
[[nodiscard]] PELMORA_API double conversionFactor(const std::string& from, const std::string& to);

// Reads a number with its unit ("1.2 cSt", "35 C") and converts it to another unit of the same
// quantity.
//
// Errors: BadData for any other text, an unknown unit, and units of two quantities.
[[nodiscard]] PELMORA_API double measureIn(const std::string& text, const std::string& unit);

}  // namespace pelmora::calibration
