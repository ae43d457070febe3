// SQLite files as databases of the component.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/salvage.h"

#include <pelmora/database.h>
#include <pelmora/patience.h>

#include <memory>
#include <string>

namespace pelmora {

namespace sqlite {
class RestingDatabases;
}

// Whether the file at `path` (UTF-8) begins like an SQLite database. False where it cannot be read.
[[nodiscard]] bool isSqliteFile(const std::string& path);

// For connections that follow one another: what one has learnt of a database, the next one need not
// learn again.
[[nodiscard]] std::shared_ptr<sqlite::RestingDatabases> restingDatabases();

// A connection to the file at `path`, not yet opened. Opening never creates anything. `resting` may
// be null.
//
// Errors: of open(): genericFailure if the file is locked, 53 missing, 70 not permitted, 75 a
//         folder, 321 empty or not an SQLite database; the description names the file and what to
//         do.
[[nodiscard]] ConnectionPtr sqliteConnection(
    const std::string& path, const Patience& patience = {},
    const std::shared_ptr<sqlite::RestingDatabases>& resting = {});

// Makes a new curve database with all tables and indexes at `path`.
//
// Errors: Error 58 if the file exists already, 75 if its folder is missing or it cannot be
//         written; then nothing is left behind.
void createSqliteCurveDatabase(const std::string& path);

// As salvageDatabase.
[[nodiscard]] SalvageReport salvageSqliteFile(const std::string& path, const std::string& newPath,
                                              const Patience& patience);

}  // namespace pelmora
