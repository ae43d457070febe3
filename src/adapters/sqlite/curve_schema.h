// The tables of a curve database.
// SPDX-License-Identifier: MIT
#pragma once

namespace pelmora::sqlite {

class DatabaseHandle;

// Marks an empty database as a curve database and makes all tables and indexes. Errors: Error.
void createCurveTables(const DatabaseHandle& database);

}  // namespace pelmora::sqlite
