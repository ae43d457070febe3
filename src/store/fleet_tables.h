// The tables of refits that many workers share.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/curve_schema.h"

#include <vector>

namespace pelmora {

// Jobs, their ranges, and what came of each series.
[[nodiscard]] std::vector<SchemaTable> fleetTables();

}  // namespace pelmora
