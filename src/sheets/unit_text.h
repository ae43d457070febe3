// Units in the headers of sheets.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/sheet.h>

#include <string>
#include <string_view>

namespace pelmora::sheets {

// The symbol of a unit as people spell it ("LPM", "deg C", "[l/min]"); empty if it is not known.
[[nodiscard]] std::string_view unitSymbol(std::string_view text);

// "Flow [l/min]", "Flow (l/min)", "Flow / l/min", "Flow, l/min", "Flow l/min", "Flow_lpm" and
// "Flow" as name and unit. Text in brackets at the end is always a unit; other text only if it is
// known.
[[nodiscard]] Column columnOf(std::string_view headerField);

// Whether these fields name the units of the columns above them: at least one known unit, and
// nothing that could be a value.
[[nodiscard]] bool areUnits(const std::vector<std::string>& fields);

}  // namespace pelmora::sheets
