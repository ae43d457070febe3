// Which character separates the fields of a text.
// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace pelmora::sheets {

// The one of ',', ';' and tab that turns most of the text into numbers without leaving another of
// them between digits. ',' if the text has none of the three.
//
// Errors: SheetError if two fit equally well.
[[nodiscard]] char chosenSeparator(std::string_view text);

}  // namespace pelmora::sheets
