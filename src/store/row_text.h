// A record set as one column of texts.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"

#include <string>
#include <vector>

namespace pelmora {

// The rows from the current one on as texts: columns joined by nothing, null as empty, and the
// whole split at line breaks, so that a value that holds a line break counts as two.
[[nodiscard]] std::vector<std::string> rowsAsTexts(Recordset& rows);

}  // namespace pelmora
