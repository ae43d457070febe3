// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_connection.h"

#include "adapters/sql_dialect/dialect_error.h"
#include "adapters/sql_dialect/parser.h"
#include "adapters/sql_dialect/sqlite_renderer.h"
#include "adapters/sqlite/attached_file.h"
#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/sqlite_database.h"
#include "adapters/sqlite/sqlite_design.h"
#include "adapters/sqlite/sqlite_error.h"
#include "adapters/sqlite/sqlite_file.h"
#include "adapters/sqlite/sqlite_recordset.h"
#include "adapters/sqlite/sqlite_session.h"
#include "base/file_text.h"
#include "base/run_time_error.h"

#include <system_error>
#include <utility>

namespace pelmora {

namespace sqlite {

namespace {

constexpr std::int32_t alreadyOpen = 3705;

}  // namespace

SqliteConnection::~SqliteConnection() {
  if (session_) session_->close();
}

void SqliteConnection::open() {
  if (session_)
    throw Error(alreadyOpen, "Pelmora", "Operation is not allowed when the object is open.");
  session_ = openSession_();
}

void SqliteConnection::close() {
  if (session_) session_->close();
  session_.reset();
}

SqliteSession& SqliteConnection::session() const {
  if (session_) return *session_;
  throw Error(recordsetClosed, "Pelmora", "Operation is not allowed when the object is closed.");
}

void SqliteConnection::execute(const std::string& statement) {
  SqliteSession& open = session();
  const sql::Statement tree = sql::parseStatement(statement);
  const auto* insert = std::get_if<sql::InsertStatement>(&tree);
  if (insert != nullptr && insert->file) return insertElsewhere(tree, *insert->file);
  if (!std::holds_alternative<sql::SelectStatement>(tree)) open.requireWritable();
  run(tree, "main");
}

void SqliteConnection::run(const sql::Statement& statement, std::string_view outputDatabase) {
  SqliteSession& open = session();
  PreparedStatement prepared(open.database(),
                             sql::renderForSqlite(statement, open.catalogue(), outputDatabase));
  while (open.step(prepared)) continue;
}

void SqliteConnection::insertElsewhere(const sql::Statement& statement, const std::string& file) {
  SqliteSession& open = session();
  const std::string output = checkedSqliteFile(file);
  std::error_code ignored;
  if (!open.file().empty() &&
      std::filesystem::equivalent(filePath(open.file()), filePath(output), ignored)) {
    // Two connections to one file would wait for each other.
    open.requireWritable();
    return run(statement, "main");
  }
  const AttachedFile attached(open, output);
  run(statement, AttachedFile::name);
}

std::unique_ptr<Recordset> SqliteConnection::openRecordset(const std::string& statement,
                                                           CursorType /*cursor*/, LockType lock) {
  (void)session();
  sql::Statement tree = sql::parseStatement(statement);
  auto* select = std::get_if<sql::SelectStatement>(&tree);
  if (select == nullptr) throw sql::statementError("Only a SELECT statement delivers rows.");
  return std::make_unique<SqliteRecordset>(session_, std::move(*select), lock);
}

bool SqliteConnection::hasTable(std::string_view name) const {
  return session().catalogue().findTable("main", name).has_value();
}

void SqliteConnection::createTable(const OwnTable& table) {
  session().requireWritable();
  session().handle().run(createTableStatement(table).c_str());
}

bool SqliteConnection::hasIndex(std::string_view table,
                                std::span<const std::string> columns) const {
  return pelmora::sqlite::hasIndex(session().database(), table, columns);
}

void SqliteConnection::createIndex(const TableIndex& index) {
  session().requireWritable();
  session().handle().run(createIndexStatement(index).c_str());
}

void SqliteConnection::begin() { session().begin(); }

void SqliteConnection::beginReading() { session().beginReading(); }

void SqliteConnection::commit() { session().commit(); }

void SqliteConnection::rollback() noexcept {
  if (session_) session_->rollback();
}

}  // namespace sqlite

ConnectionPtr sqliteConnection(const std::string& path) {
  return std::make_shared<sqlite::SqliteConnection>(
      [path] { return std::make_shared<sqlite::SqliteSession>(sqlite::checkedSqliteFile(path)); });
}

}  // namespace pelmora
