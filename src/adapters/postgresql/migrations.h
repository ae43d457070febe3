// How the tables of a curve database came to be, step by step.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace pelmora::postgres {

class Client;

struct Migration {
  int number = 0;
  std::string title;
  std::vector<std::string> statements;
};

// By number, from 1. A database that has been made stays as it is: what changes later is a
// migration of its own.
[[nodiscard]] const std::vector<Migration>& curveMigrations();
// The number that this program's databases have.
[[nodiscard]] int currentMigration();

// What is behind an open connection.
struct ServerDatabase {
  std::string name, schema, user;
  std::int64_t schemaId = 0;  // the server's number of the schema
  int migration = 0;          // the last one; 0: no curve database
  std::string encoding;
};

// Prepares a new connection for the dialect: settings, and the schema in which all names are looked
// for. `stopRequested`: as for Client::run; may be empty. `waitForLocks`: what limits the wait for
// other programs' locks, as WritingTurn gives it; may be empty.
//
// Errors: ServerError; Error 321 where the database cannot hold curves.
[[nodiscard]] ServerDatabase preparedSession(Client& client, const std::string& shown,
                                             const std::function<bool()>& stopRequested = {},
                                             const std::string& waitForLocks = {});

// Applies those of `migrations` that the database does not have, with the roles, in one
// transaction. The number of migrations applied. `stopRequested` also ends the wait for somebody
// else who does the same.
//
// Errors: ServerError; nothing is then changed.
int migrate(Client& client, const ServerDatabase& database,
            const std::vector<Migration>& migrations,
            const std::function<bool()>& stopRequested = {});

}  // namespace pelmora::postgres
