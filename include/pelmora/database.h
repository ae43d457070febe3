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
// Access file (outside Windows read into memory, so it cannot be changed), or a stand's export as a
// text file with the columns JobRecordID and V1 to V37 (read into memory).
//
// Errors: Error if the location is missing, empty, locked or not a database. Never creates a file.
PELMORA_API ConnectionPtr openDatabase(const std::string& location);

// Whether this process has the file open as a database, under whatever link. Do not open such a
// file in any other way: on POSIX systems closing it ends the locks of every connection of the
// process, and other processes write into the middle of transactions. Copy it with the engine's own
// tools.
[[nodiscard]] PELMORA_API bool isOpenAsDatabase(const std::string& path);

// Creates a new, empty SQLite curve database with all tables and indexes.
//
// Errors: Error if the file already exists or cannot be written.
PELMORA_API void createCurveDatabase(const std::string& path);

}  // namespace pelmora
