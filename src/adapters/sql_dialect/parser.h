// The text of one statement into its tree.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/syntax_tree.h"

#include <string_view>

namespace pelmora::sql {

// Reads one statement, with or without ';' at its end.
//
// Errors: Error with a description like the dialect's own engine gives; a second statement behind
// the first one is an error.
[[nodiscard]] Statement parseStatement(std::string_view text);

}  // namespace pelmora::sql
