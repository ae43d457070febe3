// Access files as databases to read from.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/access_program.h"
#include "store/foreign_tables.h"

#include <pelmora/database.h>

#include <string>

namespace pelmora {

// Whether the file at `path` (UTF-8) begins like an Access database. False where it cannot be read.
[[nodiscard]] bool isAccessFile(const std::string& path);

// A connection to the file, not yet opened. open() reads all tables into memory; the file itself is
// never changed, and statements that would change a table are errors that say what to do.
//
// Errors: open() throws those of readAccessFile, and Error 321 if anything in the file is damaged,
//         so that no table is ever returned in part.
[[nodiscard]] ConnectionPtr accessFileConnection(const std::string& path,
                                                 const access::ProgramSettings& settings = {});

// As readAccessFile of store/foreign_tables.h.
void readAccessTables(const std::string& path, ForeignTables& into,
                      const access::ProgramSettings& settings = {});

}  // namespace pelmora
