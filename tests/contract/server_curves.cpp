// SPDX-License-Identifier: MIT
#include "tests/contract/server_curves.h"

#include "adapters/postgresql/client.h"
#include "adapters/postgresql/postgres_database.h"
#include "store/curve_schema.h"
#include "tests/support/postgres_server.h"

namespace pelmora::test {

namespace {

std::string schemaTableNames() {
  std::string names;
  for (const auto* tables : {&curveTables(), &ownTables()}) {
    for (const SchemaTable& table : *tables) names += "'" + table.Name + "', ";
  }
  return names + "'pelmora_migration'";
}

// What a test has left: rows, tables of its own, keys that were given.
std::string emptied() {
  return "DO $f$ DECLARE t text; isFull boolean; BEGIN "
         "FOR t IN SELECT relname FROM pg_class WHERE relnamespace = "
         "quote_ident(current_schema())::regnamespace "
         "AND relkind = 'r' LOOP "
         "IF t NOT IN (" +
         schemaTableNames() +
         ") THEN EXECUTE format('DROP TABLE %I CASCADE', t); CONTINUE; END IF; "
         "EXECUTE format('SELECT EXISTS (SELECT FROM %I)', t) INTO isFull; "
         "IF isFull AND t <> 'pelmora_migration' THEN EXECUTE format('TRUNCATE %I', t); END IF; "
         "END LOOP; "
         "FOR t IN SELECT sequencename FROM pg_sequences WHERE schemaname = current_schema() "
         "AND last_value IS NOT NULL LOOP EXECUTE format('ALTER SEQUENCE %I RESTART', t); END "
         "LOOP; "
         "END $f$";
}

const std::string& sharedDatabase() {
  static const std::string name = [] {
    std::string made = PostgresServer::running().newDatabase();
    createPostgresCurveDatabase(PostgresServer::running().address(made));
    return made;
  }();
  return name;
}

}  // namespace

std::string ServerCurves::lack() { return PostgresServer::lack(); }

ServerCurves::ServerCurves() : path(PostgresServer::running().address(sharedDatabase())) {
  postgres::Client(path).run(emptied());
  connection = another();
}

ConnectionPtr ServerCurves::another() const {
  ConnectionPtr other = postgresConnection(path);
  other->open();
  return other;
}

}  // namespace pelmora::test
