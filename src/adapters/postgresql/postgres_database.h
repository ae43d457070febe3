// Databases on a PostgreSQL server as databases of the component.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/patience.h>

#include <string>

namespace pelmora {

// A connection to the curve database at an address (base/server_address.h), not yet opened. What
// the address leaves out comes from the client's usual places: PGHOST, PGPASSWORD, PGSERVICE,
// PGSSLMODE, ~/.pgpass ...
//
// Errors: of open(): 3151 if the server cannot be reached or refuses the user, 321 if it has no
//         curve database there or one of another version; the description says what to do.
[[nodiscard]] ConnectionPtr postgresConnection(const std::string& location,
                                               const Patience& patience = {});

// Makes the tables, indexes, functions and roles of a curve database in the database at that
// address, which must exist, or brings an older curve database up to date. In one transaction.
//
// Errors: Error 58 if there is a curve database of this version already, 70 if the user may not do
//         it, operationStopped if Patience::stopRequested has ended the wait for an answer; another
//         Error as above. Nothing is then changed.
void createPostgresCurveDatabase(const std::string& location, const Patience& patience = {});

}  // namespace pelmora
