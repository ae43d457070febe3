// The bytes of one field as a value.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/helper/long_value.h"
#include "adapters/access/helper/table_definition.h"

#include <pelmora/own_tables.h>
#include <pelmora/types.h>

#include <optional>

namespace pelmora::access {

// The type that a column gets: whole numbers, numbers bit for bit, texts; a yes/no is 1 or 0.
// Currency and decimals are texts with all of their digits, dates "yyyy-mm-dd" and " hh:mm:ss"
// unless that is midnight, identities texts in braces, binary data 0x and hexadecimal digits.
// Nothing for a column that cannot be read.
[[nodiscard]] std::optional<OwnColumnType> typeFor(const AccessColumn& column);

// A field that is not null, of any column but a yes/no.
// Errors: Damage.
[[nodiscard]] Value fieldValue(LongValues& longValues, const AccessColumn& column, Bytes field);

}  // namespace pelmora::access
