// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_session.h"

#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/sqlite_error.h"

#include <sqlite3.h>

#include <utility>

namespace pelmora::sqlite {

SqliteSession::SqliteSession(const std::string& file, OpenMode mode)
    : file_(file), handle_(std::in_place, file, mode) {
  registerDialect(database(), fault_);
  // The first look at the file: a lock, damage or a refused right shows here.
  PreparedStatement(database(), "SELECT 1 FROM sqlite_master LIMIT 1").step();
  catalogue_.emplace(database());
}

void SqliteSession::close() {
  catalogue_.reset();
  handle_.reset();
}

const SqliteCatalogue& SqliteSession::catalogue() const {
  (void)handle();
  return *catalogue_;
}

const DatabaseHandle& SqliteSession::handle() const {
  if (handle_) return *handle_;
  throw Error(connectionClosed, "Pelmora",
              "The connection cannot be used to perform this operation. It is closed.");
}

void SqliteSession::requireWritable() const {
  if (isFrozen_) {
    throw Error(
        updateRefused, "Pelmora",
        "Operation must use an updateable query. The tables of this database can only be read.");
  }
  if (inTransaction_ && sqlite3_get_autocommit(database()) != 0) {
    throw Error(updateRefused, "Pelmora",
                "The changes made together were undone after an error; nothing more is stored.");
  }
}

void SqliteSession::begin() {
  requireWritable();
  handle().run("BEGIN IMMEDIATE");
  inTransaction_ = true;
}

void SqliteSession::beginReading() {
  handle().run("BEGIN");
  inTransaction_ = true;
}

void SqliteSession::commit() {
  requireWritable();
  handle().run("COMMIT");
  inTransaction_ = false;
}

void SqliteSession::rollback() noexcept {
  inTransaction_ = false;
  // Some failures have made SQLite roll back already.
  if (!handle_ || sqlite3_get_autocommit(handle_->get()) != 0) return;
  sqlite3_exec(handle_->get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

bool SqliteSession::step(PreparedStatement& statement) {
  fault_.reset();
  try {
    return statement.step();
  } catch (const Error&) {
    if (fault_) throw Error(*fault_);
    throw;
  }
}

}  // namespace pelmora::sqlite
