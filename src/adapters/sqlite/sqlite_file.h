// Files that hold, or are said to hold, an SQLite database.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace pelmora::sqlite {

// At most the first `size` bytes of a regular file; nothing if it cannot be read. SQLite opens
// and closes the file: it knows which files the process holds locks on, and keeps those locks.
[[nodiscard]] std::optional<std::string> startOfFile(const std::string& path, std::size_t size);

// Whether a file with these first bytes, accessStartSize of them, is an Access database.
inline constexpr std::size_t accessStartSize = 19;
[[nodiscard]] bool isAccessStart(std::string_view start);

// The absolute path, which SQLite can mistake neither for a URI nor for ":memory:".
//
// Errors: Error that says why the file is not an SQLite database that can be read: 53 missing, 70
//         not permitted, 75 a folder or not a regular file, 321 empty or another format.
[[nodiscard]] std::string checkedSqliteFile(const std::string& path);

}  // namespace pelmora::sqlite
