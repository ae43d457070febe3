// Tables and indexes of an SQLite database, as statements of SQLite's own SQL.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/own_tables.h>

#include <span>
#include <string>
#include <string_view>

struct sqlite3;

namespace pelmora::sqlite {

[[nodiscard]] std::string createTableStatement(const OwnTable& table);
[[nodiscard]] std::string addColumnStatement(const std::string& table, const OwnColumn& column);
[[nodiscard]] std::string createIndexStatement(const TableIndex& index);

// Errors: Error, genericFailure if the database is locked.
[[nodiscard]] bool hasIndex(sqlite3* database, std::string_view table,
                            std::span<const std::string> columns);

}  // namespace pelmora::sqlite
