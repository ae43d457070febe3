// SPDX-License-Identifier: MIT
#include "adapters/postgresql/migrations.h"

#include "adapters/postgresql/client.h"
#include "adapters/postgresql/curve_tables.h"
#include "adapters/postgresql/location.h"
#include "adapters/postgresql/postgres_database.h"
#include "adapters/postgresql/roles.h"
#include "adapters/postgresql/server_error.h"
#include "adapters/postgresql/server_functions.h"
#include "adapters/postgresql/statement_names.h"
#include "adapters/postgresql/writing_turn.h"
#include "base/run_time_error.h"
#include "base/server_address.h"
#include "base/version.h"

#include <utility>

namespace pelmora {

namespace postgres {

namespace {

std::vector<std::string> firstTables() {
  std::vector<std::string> statements = serverFunctions();
  for (std::string& statement : curveTableStatements()) statements.push_back(std::move(statement));
  return statements;
}

std::string textOf(const ServerRows& rows, std::size_t column) {
  const sql::CellView cell = rows.rows.cell(0, column);
  const auto* text = std::get_if<std::string_view>(&cell);
  return text == nullptr ? std::string() : std::string(*text);
}

std::int64_t numberOf(const ServerRows& rows, std::size_t column) {
  const sql::CellView cell = rows.rows.cell(0, column);
  const auto* number = std::get_if<std::int64_t>(&cell);
  return number == nullptr ? 0 : *number;
}

std::string joined(const std::vector<std::string>& statements) {
  std::string text;
  for (const std::string& statement : statements) text += statement + ";\n";
  return text;
}

Error noCurveDatabase(const std::string& description) {
  return {static_cast<std::int32_t>(RunTimeError::invalidFileFormat), "Pelmora", description};
}

// Everybody's names are looked for in one schema: the first one that the user's settings give. No
// statement lasts long enough to be worth compiling. Reports are long texts: lz4, where the server
// has it, compresses them in a fraction of the time.
constexpr const char* settings =
    "SET client_encoding TO 'UTF8'; SET standard_conforming_strings TO on; "
    "SET extra_float_digits TO 1; SET DateStyle TO 'ISO'; "
    "SET default_transaction_isolation TO 'read committed'; SET jit TO off; "
    "SELECT set_config(name, 'lz4', false) FROM pg_settings "
    "WHERE name = 'default_toast_compression' AND 'lz4' = ANY (enumvals); "
    "SELECT set_config('search_path', quote_ident(current_schema()) || ', pg_temp', false); "
    "SELECT current_database()::text, current_schema()::text, current_user::text, "
    "current_setting('server_encoding'), "
    "CASE WHEN to_regclass('pelmora_migration') IS NULL THEN 0 ELSE 1 END, "
    "quote_ident(current_schema())::regnamespace::oid::bigint";

void undo(Client& client) noexcept {
  try {
    client.run("ROLLBACK");
  } catch (const ServerError&) {
    // The connection is gone, and with it the transaction.
  }
}

}  // namespace

const std::vector<Migration>& curveMigrations() {
  static const std::vector<Migration> migrations{{1, "tables of curves", firstTables()}};
  return migrations;
}

int currentMigration() { return curveMigrations().back().number; }

ServerDatabase preparedSession(Client& client, const std::string& shown,
                               const std::function<bool()>& stopRequested,
                               const std::string& waitForLocks) {
  const ServerRows rows = client.run(settings, stopRequested);
  ServerDatabase database{textOf(rows, 0), textOf(rows, 1), textOf(rows, 2), numberOf(rows, 5), 0,
                          textOf(rows, 3)};
  if (database.schema.empty()) {
    throw noCurveDatabase("In database '" + shown +
                          "' no schema of the user's search path exists. Make one, or set "
                          "search_path.");
  }
  if (database.encoding != "UTF8") {
    throw noCurveDatabase("Database '" + shown + "' keeps texts as " + database.encoding +
                          ". Curves need a database with the encoding UTF8.");
  }
  if (numberOf(rows, 4) != 0) {
    const ServerRows last =
        client.run(waitForLocks + "SELECT max(number) FROM pelmora_migration", stopRequested);
    database.migration = static_cast<int>(numberOf(last, 0));
  }
  return database;
}

int migrate(Client& client, const ServerDatabase& database,
            const std::vector<Migration>& migrations, const std::function<bool()>& stopRequested) {
  const Roles roles = rolesOf(database.name, database.schema);
  int applied = 0;
  client.run("BEGIN");
  try {
    // Of two who do it at once, one finds it done.
    client.run("SELECT pg_advisory_xact_lock(1346718797, 0)", stopRequested);
    client.run(joined(createRoleStatements(roles)) +
               joined(grantStatements(roles, database.schema)) +
               "CREATE TABLE IF NOT EXISTS pelmora_migration (number integer PRIMARY KEY, title "
               "text NOT NULL, applied_at timestamptz NOT NULL DEFAULT now(), applied_by text NOT "
               "NULL DEFAULT session_user, program text NOT NULL)");
    const ServerRows last = client.run("SELECT coalesce(max(number), 0) FROM pelmora_migration");
    for (const Migration& migration : migrations) {
      if (migration.number <= numberOf(last, 0)) continue;
      client.run(joined(migration.statements) +
                 "INSERT INTO pelmora_migration (number, title, program) VALUES (" +
                 std::to_string(migration.number) + ", " + quotedText(migration.title) + ", " +
                 quotedText(version) + ")");
      ++applied;
    }
    client.run("COMMIT");
  } catch (const ServerError&) {
    undo(client);
    throw;
  }
  return applied;
}

}  // namespace postgres

void createPostgresCurveDatabase(const std::string& location, const Patience& patience) {
  using namespace postgres;
  const std::string shown = shownLocation(location);
  try {
    Client client(connectionAddress(location), patience.stopRequested);
    ServerDatabase database;
    WritingTurn(patience).waitForLocks([&](const std::string& waitBriefly) {
      database = preparedSession(client, shown, patience.stopRequested, waitBriefly);
    });
    const Roles roles = rolesOf(database.name, database.schema);
    if (database.migration >= currentMigration()) {
      throw Error(static_cast<std::int32_t>(RunTimeError::fileExists), "Pelmora",
                  "Database '" + shown + "' is a curve database already.");
    }
    try {
      migrate(client, database, curveMigrations(), patience.stopRequested);
    } catch (const ServerError& error) {
      if (error.state() != "42501") throw;
      throw Error(static_cast<std::int32_t>(RunTimeError::permissionDenied), "Pelmora",
                  "User '" + database.user + "' is not allowed to make a curve database in '" +
                      shown + "'. The user needs CREATE on schema '" + database.schema +
                      "' and CREATEROLE, or an administrator who runs: " +
                      forAnAdministrator(roles, database.user) + " (PostgreSQL " + error.state() +
                      ": " + error.what() + ")");
    }
  } catch (const ServerError& error) {
    const ServerError clean(
        {error.state(), withoutPassword(error.what(), location), error.isConnectionLost()});
    throw clean.isConnectionLost() ? cannotConnect(clean, shown) : errorOf(clean, shown);
  }
}

}  // namespace pelmora
