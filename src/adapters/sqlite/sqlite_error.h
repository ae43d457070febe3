// SQLite's result codes as errors of the component.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_engine/engine_error.h"

#include <pelmora/error.h>

#include <cstdint>
#include <string>

struct sqlite3;

namespace pelmora::sqlite {

using sql::connectionClosed;
using sql::constraintFailed;
using sql::notUpdatable;
using sql::updateRefused;

// Code in the schema of a file was refused or stopped.
inline constexpr std::int32_t untrustedSchema = static_cast<std::int32_t>(0x80040E09U);

// The caller asked to stop while `file` ("file 'x.db'") was being read.
[[nodiscard]] Error stoppedReading(const std::string& file);

// The error of `code`, which `database` (may be null) has just reported. genericFailure is used for
// a locked database alone, because callers try again on it.
[[nodiscard]] Error sqliteError(int code, sqlite3* database);
// The same where it is about `file`, not about the database's own.
[[nodiscard]] Error sqliteError(int code, sqlite3* database, const std::string& file);

}  // namespace pelmora::sqlite
