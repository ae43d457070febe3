// Files that hold, or are said to hold, an SQLite database.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>

#include <string>

namespace pelmora::sqlite {

// The absolute path, which SQLite can mistake neither for a URI nor for ":memory:".
//
// Errors: Error that says why the file is no SQLite database that can be read: 53 missing, 70 not
// permitted,
//         75 a folder or no regular file, 321 empty or another format.
[[nodiscard]] std::string checkedSqliteFile(const std::string& path);

}  // namespace pelmora::sqlite
