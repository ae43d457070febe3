// The rule by which the curve of a fit is chosen.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <optional>
#include <string>
#include <string_view>

namespace pelmora::calibration {

enum class Choice {
  // Of the equations that pass the residual and the band test, the one with the highest adjusted
  // R2. Hosts of the component know this rule and no other.
  adjustedR2 = 0,
  // The simplest equation, by AICc, that also stays with the reference curve over the whole range
  // of the table; the reference curve itself if no equation does.
  trusted = 1
};

// "adjusted-r2", "trusted": the name in options, files and databases; it never changes.
[[nodiscard]] PELMORA_API const char* choiceKey(Choice choice);
// Nothing for any other text.
[[nodiscard]] PELMORA_API std::optional<Choice> choiceOf(std::string_view key);

}  // namespace pelmora::calibration
