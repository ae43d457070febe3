// Opening and creating databases.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <memory>
#include <string>

namespace pelmora {

class Connection;                                   // the abstract role of an open database
using ConnectionPtr = std::shared_ptr<Connection>;  // null: an absent connection

// Opens the database at `location` with the driver for what is found there: an SQLite file, an
// Access file (outside Windows read into memory, so it cannot be changed), a stand's export as a
// text file with the columns JobRecordID and V1 to V37 (read into memory), or a curve database on a
// PostgreSQL server, "postgresql://...". What such an address leaves out comes from the usual
// places of the server's clients: PGHOST, PGSERVICE, PGPASSWORD, ~/.pgpass, PGSSLMODE ...
//
// Errors: Error if the location is missing, empty, locked or not a database. Never creates a file.
PELMORA_API ConnectionPtr openDatabase(const std::string& location);

// Whether this process has the file open as a database, under whatever link. Do not open such a
// file in any other way: on POSIX systems closing it ends the locks of every connection of the
// process, and other processes write into the middle of transactions. Copy it with the engine's own
// tools.
[[nodiscard]] PELMORA_API bool isOpenAsDatabase(const std::string& path);

// Creates a new, empty curve database with all tables and indexes: an SQLite file, or, for an
// address "postgresql://...", tables and roles in an existing database on the server; one that an
// older version has made there is brought up to date.
//
// Errors: Error if the file already exists or cannot be written.
PELMORA_API void createCurveDatabase(const std::string& path);

}  // namespace pelmora
