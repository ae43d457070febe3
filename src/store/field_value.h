// Database values as the types that the operations work with.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora {

[[nodiscard]] bool isNull(const Value& value);

// Fractions are rounded half to even.
//
// Errors: Error 94 for null, 13 for text that is not a number, 6 out of the type's range.
[[nodiscard]] double toDouble(const Value& value);
[[nodiscard]] std::int32_t toInt32(const Value& value);
[[nodiscard]] std::int16_t toInt16(const Value& value);

// Nothing for null, and null for nothing.  Errors: as toDouble.
[[nodiscard]] std::optional<double> toOptionalDouble(const Value& value);
[[nodiscard]] Value toValue(const std::optional<double>& number);

// NaN for null and for texts.
[[nodiscard]] double numberOrNan(const Value& value);

// Null gives an empty text.
[[nodiscard]] std::string toText(const Value& value);

// The lines of a text; none for null.
[[nodiscard]] std::vector<std::string> toLines(const Value& value);

}  // namespace pelmora
