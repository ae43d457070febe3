// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_error.h"

#include "adapters/sql_dialect/dialect_error.h"
#include "adapters/sqlite/schema_guard.h"
#include "base/run_time_error.h"

#include <sqlite3.h>

#include <string>

namespace pelmora::sqlite {

namespace {

std::string quotedFile(sqlite3* database, const char* schema) {
  const char* name = sqlite3_db_filename(database, schema);
  return name == nullptr || *name == '\0' ? "" : "file '" + std::string(name) + "'";
}

// The files that the failed statement may have been about.
std::string filesOf(sqlite3* database) {
  if (database == nullptr) return "the database";
  const std::string main = quotedFile(database, "main");
  const std::string output = quotedFile(database, "output");
  if (main.empty() && output.empty()) return "the database";
  return main + (main.empty() || output.empty() ? "" : " or ") + output;
}

bool isTooComplex(const std::string& message) {
  return message.find("parser stack overflow") != std::string::npos ||
         message.find("Expression tree is too large") != std::string::npos ||
         message.find("too many") != std::string::npos;
}

std::string schemaCode(sqlite3* database) {
  const SchemaGuard* const guard = SchemaGuard::of(database);
  return guard == nullptr ? "A view or trigger" : "The " + guard->lastSchemaCode();
}

bool wasStopped(sqlite3* database) {
  const SchemaGuard* const guard = SchemaGuard::of(database);
  return guard != nullptr && guard->wasStopped();
}

Error notAllowed(sqlite3* database, const std::string& file, const std::string& native) {
  return {
      untrustedSchema, "Pelmora",
      schemaCode(database) + " of " + file +
          " does something that code stored in a database is not allowed to do. Remove it, or use "
          "another database." +
          native};
}

Error errorAbout(int code, sqlite3* database, const std::string& file) {
  const int extended = database == nullptr ? code : sqlite3_extended_errcode(database);
  const std::string message = database == nullptr ? sqlite3_errstr(code) : sqlite3_errmsg(database);
  const std::string native = " (SQLite " + std::to_string(extended) + ": " + message + ")";
  const auto pathAccess = static_cast<std::int32_t>(RunTimeError::pathAccess);
  switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return {genericFailure, "Pelmora",
              "Could not lock " + file + "; it is locked by another user." + native};
    case SQLITE_READONLY:
    case SQLITE_PERM:
      return {updateRefused, "Pelmora",
              "Operation must use an updateable query. Check that " + file +
                  " and its folder can be written." + native};
    case SQLITE_AUTH: return notAllowed(database, file, native);
    case SQLITE_INTERRUPT:
      if (wasStopped(database)) return stoppedReading(file);
      return {untrustedSchema, "Pelmora",
              schemaCode(database) + " of " + file +
                  " was stopped because it ran too long. Remove it, or use another "
                  "database." +
                  native};
    case SQLITE_CANTOPEN:
      return {updateRefused, "Pelmora",
              "Operation must use an updateable query. No journal can be created beside " + file +
                  "; check that its folder can be written." + native};
    case SQLITE_CONSTRAINT:
      return {constraintFailed, "Pelmora",
              "The changes you requested to the table were not successful because they would break "
              "a rule "
              "of the table." +
                  native};
    case SQLITE_FULL:
      return {pathAccess, "Pelmora", "There is no room left for " + file + "." + native};
    case SQLITE_IOERR: return {pathAccess, "Pelmora", "Disk error on " + file + "." + native};
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      return {static_cast<std::int32_t>(RunTimeError::invalidFileFormat), "Pelmora",
              "Unrecognized database format: " + file + " is damaged. Restore it from a copy." +
                  native};
    case SQLITE_NOMEM: return {7, "Pelmora", "Out of memory" + native};
    case SQLITE_TOOBIG:
      return {static_cast<std::int32_t>(RunTimeError::overflow), "Pelmora", "Overflow" + native};
    default: break;
  }
  if (message.starts_with("not authorized")) return notAllowed(database, file, native);
  if (isTooComplex(message)) return sql::statementError("Query is too complex." + native);
  if (message == "integer overflow") return makeError(RunTimeError::overflow);
  return sql::statementError("The database engine refused the statement." + native);
}

}  // namespace

Error stoppedReading(const std::string& file) {
  return {operationStopped, "Pelmora", "Reading " + file + " was stopped."};
}

Error sqliteError(int code, sqlite3* database) {
  return errorAbout(code, database, filesOf(database));
}

Error sqliteError(int code, sqlite3* database, const std::string& file) {
  return errorAbout(code, database, "file '" + file + "'");
}

}  // namespace pelmora::sqlite
