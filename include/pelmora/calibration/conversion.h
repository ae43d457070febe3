// Units on request: nothing is ever converted silently.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <string>

namespace pelmora::calibration {

// What one `from` is in `to`.
//
// Errors: BadData for an unknown unit, two different quantities, and temperatures, whose scales
//         have different zeros.
[[nodiscard]] PELMORA_API double conversionFactor(const std::string& from, const std::string& to);

// "1.2 cSt", "35 C": a number with its unit, in another unit of that quantity.
//
// Errors: BadData for anything else.
[[nodiscard]] PELMORA_API double measureIn(const std::string& text, const std::string& unit);

}  // namespace pelmora::calibration
