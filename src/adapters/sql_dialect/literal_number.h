// Literals read as numbers.
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace pelmora::sql {

// Nothing unless the whole text is a finite number.
[[nodiscard]] std::optional<double> numberOf(std::string_view text);

// The digits of a whole number, as a text column holds it; nothing for other numbers and texts.
[[nodiscard]] std::optional<std::string> wholeNumberText(std::string_view literal);

}  // namespace pelmora::sql
