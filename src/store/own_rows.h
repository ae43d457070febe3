// Our own tables in a curve database, which gets each of them when it is first needed.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"

#include <span>
#include <string_view>
#include <vector>

namespace pelmora {

// False also for a database that cannot have own tables.
[[nodiscard]] bool hasOwnTable(const Connection& curves, std::string_view table);
// Creates a table of the schema with its indexes. One of an earlier version gets what it lacks.
//
// Errors: Error 3251 with the description `lack` if the database cannot have own tables.
void createOwnTable(Connection& curves, std::string_view table, const char* lack);

// The names of its columns, in their order.
[[nodiscard]] std::vector<std::string_view> columnNames(std::string_view table);
// Adds a row with one value for each column.
void addOwnRow(Connection& curves, std::string_view table, std::span<const Value> values);

}  // namespace pelmora
