// Files that hold, or are said to hold, an SQLite database.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>

#include <filesystem>
#include <string>

namespace pelmora::sqlite {

// Of a UTF-8 text.
[[nodiscard]] std::filesystem::path filePath(const std::string& path);
[[nodiscard]] std::string utf8Text(const std::filesystem::path& path);

// The absolute path, which SQLite can mistake neither for a URI nor for ":memory:".
//
// Errors: Error `number` that says why the file is no SQLite database that can be read.
[[nodiscard]] std::string checkedSqliteFile(const std::string& path, std::int32_t number);

}  // namespace pelmora::sqlite
