// The tables of a curve database, and how a new one comes to be.
// SPDX-License-Identifier: MIT
#include "adapters/sqlite/curve_schema.h"

#include "adapters/sqlite/database_handle.h"
#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/sqlite_database.h"
#include "adapters/sqlite/sqlite_design.h"
#include "adapters/sqlite/sqlite_expression.h"
#include "adapters/sqlite/unfinished_file.h"
#include "store/curve_schema.h"

#include <pelmora/error.h>
#include <sqlite3.h>

#include <cstddef>
#include <string>

namespace pelmora {

namespace {

// Marks the file as a curve database: "PELM", and the version of its tables.
constexpr const char* identity = "PRAGMA application_id = 0x50454C4D; PRAGMA user_version = 1;";

}  // namespace

void sqlite::createCurveTables(const DatabaseHandle& database) {
  database.run(identity);
  for (const SchemaTable& table : curveTables()) {
    database.run(createTableStatement(table.design()).c_str());
    for (const TableIndex& index : table.designIndexes())
      database.run(createIndexStatement(index).c_str());
  }
}

bool sqlite::hasCurveTables(sqlite3* database) {
  std::string names, looks;
  for (const SchemaTable& table : curveTables()) {
    const char* separator = names.empty() ? "" : ", ";
    names += separator + quotedText(table.Name);
    looks +=
        separator + ("(SELECT 1 FROM \"main\"." + quotedName(table.Name)) + " NOT INDEXED LIMIT 1)";
  }
  PreparedStatement tables(database,
                           "SELECT COUNT(*) FROM \"main\".sqlite_master WHERE type = 'table' AND "
                           "rootpage <> 0 AND name COLLATE NOCASE IN (" +
                               names + ")");
  tables.step();
  const auto found = static_cast<std::size_t>(sqlite3_column_int64(tables.get(), 0));
  if (found != curveTables().size()) return false;
  PreparedStatement(database, "SELECT " + looks).step();
  return true;
}

void createSqliteCurveDatabase(const std::string& path) {
  const sqlite::UnfinishedFile unfinished(path);
  try {
    const sqlite::DatabaseHandle database(unfinished.path(), sqlite::OpenMode::create);
    database.run("BEGIN");
    sqlite::createCurveTables(database);
    database.run("COMMIT");
  } catch (const Error& error) {
    throw unfinished.cannotCreate(error.what());
  }
  unfinished.moveToItsPlace();
}

}  // namespace pelmora
