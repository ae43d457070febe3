// What statements of the dialect need beyond SQLite: its arithmetic, LIKE and text order.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>

#include <memory>
#include <optional>

struct sqlite3;

namespace pelmora::sqlite {

// The error that a function met inside a running statement. SQLite itself hands on its text alone.
using StatementFault = std::optional<Error>;

// Registers dialect_arithmetic, dialect_like and DIALECT_TEXT. `fault` must outlive `database`.
void registerDialect(sqlite3* database, StatementFault& fault);

}  // namespace pelmora::sqlite
