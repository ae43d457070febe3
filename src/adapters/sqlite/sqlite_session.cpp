// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_session.h"

#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/sqlite_error.h"

#include <sqlite3.h>

#include <utility>

namespace pelmora::sqlite {

SqliteSession::SqliteSession(const std::string& file, OpenMode mode, const Patience& patience)
    : file_(file), handle_(std::in_place, file, mode, patience) {
  registerDialect(database(), fault_);
  // The first look at the file: a lock, damage or a refused right shows here.
  PreparedStatement(database(), "SELECT 1 FROM sqlite_master LIMIT 1").step();
  catalogue_.emplace(database());
  pool_.emplace(database());
  translations_.emplace(*catalogue_, *pool_);
}

void SqliteSession::close() {
  translations_.reset();
  pool_.reset();
  catalogue_.reset();
  handle_.reset();
}

const SqliteCatalogue& SqliteSession::catalogue() const {
  (void)handle();
  return *catalogue_;
}

StatementPool& SqliteSession::pool() {
  (void)handle();
  return *pool_;
}

StatementTranslations& SqliteSession::translations() {
  (void)handle();
  return *translations_;
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
  if (!handle_) return;
  // Some failures have made SQLite roll back already.
  const bool isOpen = sqlite3_get_autocommit(database()) == 0;
  const bool hasRead = isOpen && sqlite3_txn_state(database(), "main") != SQLITE_TXN_WRITE;
  if (!hasRead) forgetSchema();
  if (isOpen) sqlite3_exec(database(), "ROLLBACK", nullptr, nullptr, nullptr);
}

// Every transaction that changes tables counts on from the schema version that is stored: after one
// that is undone, a version that was seen before means other tables.
void SqliteSession::forgetSchema() noexcept {
  catalogue_->forget();
  translations_->clear();
  designed_.clear();
}

void SqliteSession::design(const std::string& statement) {
  requireWritable();
  const std::int64_t version = catalogue_->schemaVersion();
  if (version != designedVersion_) designed_.clear();
  designedVersion_ = version;
  if (designed_.contains(statement)) return;
  handle().run(statement.c_str());
  if (catalogue_->schemaVersion() == version) designed_.insert(statement);
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
