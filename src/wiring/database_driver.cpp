// SPDX-License-Identifier: MIT
#include "wiring/database_driver.h"

#include <pelmora/stand.h>

#include "base/file_text.h"
#include "base/plain_reading.h"
#include "base/run_time_error.h"
#include "base/server_address.h"
#include "store/connection.h"
#include "store/elsewhere.h"
#include "store/foreign_tables.h"
#include "store/salvage.h"

#if defined(PELMORA_HAS_SQLITE)
#include "adapters/sqlite/sqlite_database.h"
#include "adapters/stand_csv/stand_csv.h"
#endif

#if defined(PELMORA_HAS_ACCESS)
#include "adapters/access/access_database.h"
#endif

#if defined(PELMORA_HAS_POSTGRESQL)
#include "adapters/postgresql/postgres_database.h"
#endif

#if defined(PELMORA_HAS_ADO)
#include "adapters/ado/ado_connection.h"
#endif

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

namespace pelmora {

namespace sqlite {
class RestingDatabases;
}

namespace {

using RestingPtr = std::shared_ptr<sqlite::RestingDatabases>;

RestingPtr restingPlace() {
#if defined(PELMORA_HAS_SQLITE)
  return restingDatabases();
#else
  return nullptr;
#endif
}

[[maybe_unused]] Error noDriver(const std::string& location) {
  return {static_cast<std::int32_t>(RunTimeError::noObject), "Pelmora:openDatabase",
          "No database driver is built in for '" + shownLocation(location) + "'"};
}

ConnectionPtr driverFor([[maybe_unused]] const std::string& location,
                        [[maybe_unused]] const Patience& patience,
                        [[maybe_unused]] const RestingPtr& resting) {
  if (isServerAddress(location)) {
#if defined(PELMORA_HAS_POSTGRESQL)
    return postgresConnection(location, patience);
#else
    return nullptr;
#endif
  }
#if defined(PELMORA_HAS_ADO)
  if (isAccessLocation(location)) return accessConnection(location);
#endif
#if defined(PELMORA_HAS_SQLITE)
  // First: other looks at a file take longer.
  if (isSqliteFile(location)) return sqliteConnection(location, patience, resting);
#endif
#if defined(PELMORA_HAS_ACCESS)
  if (isAccessFile(location)) return accessFileConnection(location);
#endif
#if defined(PELMORA_HAS_SQLITE)
  if (isStandCsv(location)) return standCsvConnection(location);
  return sqliteConnection(location, patience, resting);
#else
  return nullptr;
#endif
}

ConnectionPtr connectionTo(const std::string& location, const Patience& patience,
                           const RestingPtr& resting) {
  ConnectionPtr connection = driverFor(location, patience, resting);
  // A stand's engine is asked to insert its points into the curve database, whatever keeps that.
  if (auto* stand = dynamic_cast<InsertsElsewhere*>(connection.get()))
    stand->setElsewhere(databaseConnection);
  return connection;
}

}  // namespace

ConnectionPtr databaseConnection(const std::string& location, const Patience& patience) {
  static const RestingPtr resting = restingPlace();
  // Most programs open one database once, and would remember it in vain.
  static std::atomic<bool> isFirst = true;
  return connectionTo(location, patience, isFirst.exchange(false) ? nullptr : resting);
}

std::function<ConnectionPtr(const std::string& location)> operationConnections() {
  return [resting = restingPlace()](const std::string& location) {
    return connectionTo(location, {}, resting);
  };
}

ConnectionPtr openDatabase(const std::string& location) { return openDatabase(location, {}); }

ConnectionPtr openDatabase(const std::string& location, const Patience& patience) {
  ConnectionPtr connection = databaseConnection(location, patience);
  if (!connection) throw noDriver(location);
  connection->open();
  return connection;
}

OpenedStand openStand(const std::string& location, const Patience& patience,
                      [[maybe_unused]] const sheets::Style& style) {
  OpenedStand stand;
#if defined(PELMORA_HAS_SQLITE)
  if (const std::string kind = workbookKind(location); !kind.empty()) {
    throw sheets::SheetError("", "it is " + kind,
                             "save the stand's data as CSV (File > Save As) and name that file")
        .inFile(location, static_cast<std::int32_t>(RunTimeError::invalidFileFormat));
  }
  if (isStandCsv(location)) {
    const auto reading = std::make_shared<StandReading>();
    stand.connection = standCsvConnection(location, style, reading);
    stand.connection->open();
    stand.recognised = std::move(reading->recognised);
    stand.lines = std::move(reading->lines);
    return stand;
  }
#endif
  stand.connection = openDatabase(location, patience);
  return stand;
}

bool isOpenAsDatabase(const std::string& path) { return isDatabaseInUse(filePath(path)); }

void createCurveDatabase(const std::string& path) { createCurveDatabase(path, {}); }

void createCurveDatabase(const std::string& path, [[maybe_unused]] const Patience& patience) {
  if (isServerAddress(path)) {
#if defined(PELMORA_HAS_POSTGRESQL)
    return createPostgresCurveDatabase(path, patience);
#else
    throw noDriver(path);
#endif
  }
#if defined(PELMORA_HAS_SQLITE)
  createSqliteCurveDatabase(path);
#else
  throw noDriver(path);
#endif
}

SalvageReport salvageDatabase(const std::string& path, [[maybe_unused]] const std::string& newPath,
                              [[maybe_unused]] const Patience& patience) {
  if (isServerAddress(path)) {
    throw Error(static_cast<std::int32_t>(RunTimeError::invalidFileFormat), "Pelmora",
                "'" + shownLocation(path) +
                    "' is on a server, which keeps its own files whole. Restore it from a dump.");
  }
#if defined(PELMORA_HAS_ACCESS)
  if (isAccessFile(path)) {
    throw Error(static_cast<std::int32_t>(RunTimeError::invalidFileFormat), "Pelmora",
                "'" + path +
                    "' is an Access file. Repair it in Access, or copy what can be read into "
                    "a new curve database with 'pelmora import-access'.");
  }
#endif
#if defined(PELMORA_HAS_SQLITE)
  return salvageSqliteFile(path, newPath, patience);
#else
  throw noDriver(path);
#endif
}

void readAccessFile(const std::string& path, [[maybe_unused]] ForeignTables& into) {
#if defined(PELMORA_HAS_ACCESS)
  readAccessTables(path, into);
#else
  throw noDriver(path);
#endif
}

}  // namespace pelmora
