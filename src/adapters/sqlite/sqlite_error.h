// SQLite's result codes as errors of the component.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>

#include <cstdint>
#include <string>

struct sqlite3;

namespace pelmora::sqlite {

// Error numbers of the database role beside those of the dialect and the run-time errors.
inline constexpr std::int32_t updateRefused = static_cast<std::int32_t>(0x80040E09U);
inline constexpr std::int32_t constraintFailed = static_cast<std::int32_t>(0x80040E2FU);
// Code in the schema of a file was refused or stopped.
inline constexpr std::int32_t untrustedSchema = static_cast<std::int32_t>(0x80040E09U);
inline constexpr std::int32_t notUpdatable = 3251;
inline constexpr std::int32_t connectionClosed = 3709;
inline constexpr std::int32_t recordsetClosed = 3704;
inline constexpr std::int32_t changesPending = 3219;

// The error of `code`, which `database` (may be null) has just reported. genericFailure is used for
// a locked database alone, because callers try again on it.
[[nodiscard]] Error sqliteError(int code, sqlite3* database);
// The same where it is about `file`, not about the database's own.
[[nodiscard]] Error sqliteError(int code, sqlite3* database, const std::string& file);

}  // namespace pelmora::sqlite
