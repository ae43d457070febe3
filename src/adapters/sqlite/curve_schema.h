// The tables of a curve database.
// SPDX-License-Identifier: MIT
#pragma once

struct sqlite3;

namespace pelmora::sqlite {

class DatabaseHandle;

// Marks an empty database as a curve database and makes all tables and indexes. Errors: Error.
void createCurveTables(const DatabaseHandle& database);

// Whether all tables are there, none of them a view or a virtual table. Reads the first row of
// each. Errors: Error if that fails; genericFailure if the database is locked.
[[nodiscard]] bool hasCurveTables(sqlite3* database);

}  // namespace pelmora::sqlite
