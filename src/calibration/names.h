// Names that people type, before they become rows.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::calibration {

// The name without the blanks at its ends.
//
// what: "meter", "series", "fluid" ... for the message.
// Errors: BadData if nothing is left, and for control characters, characters that change the
//         direction of writing, and bytes that are not UTF-8.
[[nodiscard]] std::string cleanName(const std::string& what, const std::string& name);

}  // namespace pelmora::calibration
