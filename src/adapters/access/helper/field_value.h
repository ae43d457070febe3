// The bytes of one field as a value.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/helper/long_value.h"
#include "adapters/access/helper/table_definition.h"

#include <pelmora/own_tables.h>
#include <pelmora/types.h>

#include <optional>

namespace pelmora::access {

// The type that a column gets; nothing if its values cannot be read. Whole numbers, other numbers
// and texts keep their values exactly. A yes/no is 1 or 0, currency and decimals are texts with all
// of their digits, dates are "yyyy-mm-dd hh:mm:ss" without the time at midnight, identities are
// texts in braces, and binary data is 0x followed by hexadecimal digits.
[[nodiscard]] std::optional<OwnColumnType> typeFor(const AccessColumn& column);

// The value of a field that is not null, in a column of any type but yes/no.
// Errors: Damage.
[[nodiscard]] Value fieldValue(LongValues& longValues, const AccessColumn& column, Bytes field);

}  // namespace pelmora::access
