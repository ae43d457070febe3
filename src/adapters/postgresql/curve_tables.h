// Tables and indexes of the schema, as statements of the server's SQL.
//
// Names keep their spelling, as in a file. A table without a key gets a column of our own that says
// in what order its rows came.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/own_tables.h>

#include <string>
#include <vector>

namespace pelmora::postgres {

inline constexpr const char* orderColumn = "pelmora_row";
// Numbers and times of what was done to make the tables (migrations.h).
inline constexpr const char* migrationTable = "pelmora_migration";

[[nodiscard]] std::string createTableStatement(const OwnTable& table);
[[nodiscard]] std::string addColumnStatement(const std::string& table, const OwnColumn& column);
// Texts are indexed as they are compared: by their small letters.
[[nodiscard]] std::string createIndexStatement(const TableIndex& index,
                                               const std::vector<std::string>& textColumns);

// All tables of a curve database with their indexes, our own included: who only writes rows may
// make none later.
[[nodiscard]] std::vector<std::string> curveTableStatements();

}  // namespace pelmora::postgres
