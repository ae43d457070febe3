// Opening and creating databases.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <memory>
#include <string>

namespace pelmora {

class Connection;                                   // the abstract role of an open database
using ConnectionPtr = std::shared_ptr<Connection>;  // null: an absent connection

// Opens the database at `location` with the driver that fits what the location holds: an SQLite
// file, or a stand export as CSV with the header JobRecordID,V1..V37 (read into memory).
//
// Errors: Error where the location is missing, empty, locked or no database; nothing is created.
PELMORA_API ConnectionPtr openDatabase(const std::string& location);

// Makes a new, empty SQLite curve database with all tables and indexes.
//
// Errors: Error where the file exists already or cannot be written.
PELMORA_API void createCurveDatabase(const std::string& path);

}  // namespace pelmora
