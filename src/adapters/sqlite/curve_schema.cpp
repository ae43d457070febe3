// The tables of a curve database, and how a new one comes to be.
// SPDX-License-Identifier: MIT
#include "adapters/sqlite/curve_schema.h"

#include "adapters/sqlite/database_handle.h"
#include "adapters/sqlite/sqlite_database.h"
#include "adapters/sqlite/sqlite_design.h"
#include "adapters/sqlite/unfinished_file.h"
#include "store/curve_schema.h"

#include <pelmora/error.h>

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
