// Values from other databases in the columns of a curve database.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/curve_schema.h"

#include <pelmora/types.h>

#include <optional>
#include <string>
#include <string_view>

namespace pelmora::calibration {

// The value as a column of this type stores it. Empty if the value would change: a fraction in a
// column of whole numbers, a word in a column of numbers.
[[nodiscard]] std::optional<Value> storedValue(const Value& value, OwnColumnType type);

// For messages: shortened, and exact for numbers.
[[nodiscard]] std::string valueText(const Value& value);

// The number of the column with this name, without regard to case.
[[nodiscard]] std::optional<std::size_t> columnOf(const SchemaTable& table, std::string_view name);

}  // namespace pelmora::calibration
