// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_connection.h"

#include "adapters/sql_dialect/name_scope.h"
#include "adapters/sql_engine/client_recordset.h"
#include "adapters/sql_engine/insert_elsewhere.h"
#include "adapters/sqlite/attached_file.h"
#include "adapters/sqlite/curve_schema.h"
#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/sqlite_database.h"
#include "adapters/sqlite/sqlite_design.h"
#include "adapters/sqlite/sqlite_error.h"
#include "adapters/sqlite/sqlite_file.h"
#include "adapters/sqlite/sqlite_integrity.h"
#include "adapters/sqlite/sqlite_renderer.h"
#include "adapters/sqlite/sqlite_session.h"
#include "base/file_text.h"
#include "base/run_time_error.h"
#include "base/server_address.h"
#include "base/text_case.h"

#include <sqlite3.h>

#include <algorithm>
#include <system_error>
#include <utility>

namespace pelmora {

namespace sqlite {

SqliteConnection::~SqliteConnection() {
  if (session_) session_->close();
}

void SqliteConnection::open() {
  if (session_)
    throw Error(sql::alreadyOpen, "Pelmora", "Operation is not allowed when the object is open.");
  session_ = openSession_(patience_);
}

void SqliteConnection::close() {
  if (session_) session_->close();
  session_.reset();
}

SqliteSession& SqliteConnection::session() const {
  if (session_) return *session_;
  throw Error(sql::recordsetClosed, "Pelmora",
              "Operation is not allowed when the object is closed.");
}

void SqliteConnection::execute(const std::string& statement) {
  SqliteSession& open = session();
  sql::DialectStatement known = open.translations().read(statement);
  const auto* insert = std::get_if<sql::InsertStatement>(&*known.tree);
  if (insert != nullptr && insert->file) {
    if (isServerAddress(*insert->file)) return insertOnServer(*insert, *insert->file);
    if (!isOwnFile(*insert->file)) return insertIntoFile(*known.tree, *insert->file);
    // Two connections to one file would wait for each other.
  }
  if (!std::holds_alternative<sql::SelectStatement>(*known.tree)) open.requireWritable();
  StatementPool::Use prepared = open.prepare(known);
  while (open.step(*prepared)) continue;
}

// Errors: those of checkedSqliteFile.
bool SqliteConnection::isOwnFile(const std::string& file) const {
  const std::string output = checkedSqliteFile(file);
  std::error_code ignored;
  return !session().file().empty() &&
         std::filesystem::equivalent(filePath(session().file()), filePath(output), ignored);
}

void SqliteConnection::insertIntoFile(const sql::Statement& statement, const std::string& file) {
  SqliteSession& open = session();
  const AttachedFile attached(open, checkedSqliteFile(file));
  // Not kept: it holds for this file alone.
  PreparedStatement prepared(open.database(),
                             renderForSqlite(statement, open.catalogue(), AttachedFile::name));
  while (open.step(prepared)) continue;
}

void SqliteConnection::insertOnServer(const sql::InsertStatement& insert,
                                      const std::string& address) {
  const ConnectionPtr target = openElsewhere_ ? openElsewhere_(address, patience_) : nullptr;
  if (!target) {
    throw Error(static_cast<std::int32_t>(RunTimeError::noObject), "Pelmora",
                "No database driver is built in for '" + shownLocation(address) + "'");
  }
  const sql::SelectedRows selected = session().select(sql::insertedRows(insert));
  target->open();
  sql::insertElsewhere(insert, selected.fields, selected.rows, *target);
  target->close();
}

std::unique_ptr<Recordset> SqliteConnection::openRecordset(const std::string& statement,
                                                           CursorType /*cursor*/, LockType lock) {
  (void)session();
  return std::make_unique<sql::ClientRecordset>(session_, statement, lock);
}

void SqliteConnection::visitRows(const std::string& statement, const RowVisitor& visit) {
  session().visitRows(statement, visit);
}

bool SqliteConnection::hasTable(std::string_view name) const {
  return session().catalogue().findTable("main", name).has_value();
}

void SqliteConnection::createTable(const OwnTable& table) {
  SqliteSession& open = session();
  open.requireWritable();
  const auto made = open.catalogue().findTable("main", table.Name);
  if (!made) return open.design(createTableStatement(table));
  for (const OwnColumn& column : table.Columns) {
    if (column.Type != OwnColumnType::key && sql::findColumn(*made, column.Name) == nullptr)
      open.design(addColumnStatement(table.Name, column));
  }
}

bool SqliteConnection::hasIndex(std::string_view table,
                                std::span<const std::string> columns) const {
  return pelmora::sqlite::hasIndex(session().database(), table, columns);
}

void SqliteConnection::createIndex(const TableIndex& index) {
  session().design(createIndexStatement(index));
}

bool SqliteConnection::hasCurveTables() const {
  return pelmora::sqlite::hasCurveTables(session().database());
}

bool SqliteConnection::isReadOnly() const { return session().isFrozen(); }

void SqliteConnection::begin() { session().begin(); }

void SqliteConnection::beginReading() { session().beginReading(); }

bool SqliteConnection::hasTransaction() const noexcept {
  return session_ && session_->hasTransaction();
}

void SqliteConnection::commit() { session().commit(); }

void SqliteConnection::rollback() noexcept {
  if (session_) session_->rollback();
}

void SqliteConnection::setLockPatience(std::chrono::milliseconds limit) {
  patience_.limit = limit;
  if (session_) session_->handle().setLockPatience(limit);
}

std::int64_t SqliteConnection::foreignChanges() {
  StatementPool::Use version = session().pool().take("PRAGMA \"main\".data_version");
  version->step();
  return sqlite3_column_int64(version->get(), 0);
}

std::vector<IntegrityProblem> SqliteConnection::integrityProblems(std::size_t most) {
  return pelmora::sqlite::integrityProblems(session().database(), most);
}

}  // namespace sqlite

ConnectionPtr sqliteConnection(const std::string& path, const Patience& patience,
                               const std::shared_ptr<sqlite::RestingDatabases>& resting) {
  return std::make_shared<sqlite::SqliteConnection>(
      [path, resting](const Patience& now) {
        return std::make_shared<sqlite::SqliteSession>(path, now, resting);
      },
      patience);
}

std::shared_ptr<sqlite::RestingDatabases> restingDatabases() {
  return std::make_shared<sqlite::RestingDatabases>();
}

}  // namespace pelmora
