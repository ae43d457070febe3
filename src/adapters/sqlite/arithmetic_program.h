// The arithmetic of the dialect on SQLite's values.
// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string_view>

struct sqlite3_context;
struct sqlite3_value;

namespace pelmora::sqlite {

// Runs a program of dialect_arithmetic and delivers its result to `context`. Whole numbers stay
// whole as long as they can; a text that reads as a number counts as that number.
//
// Errors: Error 6 for a result beyond the range, 11 for a division by zero, 5 for the power of a
//         negative number to a broken exponent, a type mismatch for other texts.
void evaluateProgram(sqlite3_context* context, std::string_view program,
                     std::span<sqlite3_value*> values);

[[nodiscard]] std::string_view valueText(sqlite3_value* value);

}  // namespace pelmora::sqlite
