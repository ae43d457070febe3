// Errors of statements, worded as the dialect's users know them.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace pelmora::sql {

inline constexpr std::int32_t syntaxErrorNumber = static_cast<std::int32_t>(0x80040E14U);
inline constexpr std::int32_t missingParameterNumber = static_cast<std::int32_t>(0x80040E10U);
inline constexpr std::int32_t missingTableNumber = static_cast<std::int32_t>(0x80040E37U);
inline constexpr std::int32_t typeMismatchNumber = static_cast<std::int32_t>(0x80040E07U);

[[nodiscard]] Error statementError(const std::string& description);
// "Syntax error in <place>."
[[nodiscard]] Error syntaxErrorIn(std::string_view place);
// "Syntax error (missing operator) in query expression '<expression>'." and its kin: `what` is the
// part before " in query expression". Very long expressions are cut.
[[nodiscard]] Error expressionError(std::string_view what, std::string_view expression);
[[nodiscard]] Error missingTable(std::string_view name);
[[nodiscard]] Error missingOutputTable(std::string_view name);
// `places` names where the column was looked for.
[[nodiscard]] Error missingColumn(std::string_view name, std::string_view places);
[[nodiscard]] Error typeMismatch();

}  // namespace pelmora::sql
