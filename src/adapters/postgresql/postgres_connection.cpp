// SPDX-License-Identifier: MIT
#include "adapters/postgresql/postgres_connection.h"

#include "adapters/postgresql/curve_tables.h"
#include "adapters/postgresql/postgres_database.h"
#include "adapters/postgresql/postgres_session.h"
#include "adapters/postgresql/range_leases.h"
#include "adapters/postgresql/server_indexes.h"
#include "adapters/sql_dialect/dialect_error.h"
#include "adapters/sql_dialect/name_scope.h"
#include "adapters/sql_engine/client_recordset.h"
#include "adapters/sql_engine/engine_error.h"

namespace pelmora {

namespace postgres {

PostgresConnection::~PostgresConnection() {
  if (session_) session_->close();
}

void PostgresConnection::open() {
  if (session_)
    throw Error(sql::alreadyOpen, "Pelmora", "Operation is not allowed when the object is open.");
  session_ = std::make_shared<PostgresSession>(location_, patience_);
}

void PostgresConnection::close() {
  if (session_) session_->close();
  session_.reset();
}

PostgresSession& PostgresConnection::session() const {
  if (session_) return *session_;
  throw Error(sql::recordsetClosed, "Pelmora",
              "Operation is not allowed when the object is closed.");
}

void PostgresConnection::execute(const std::string& statement) {
  PostgresSession& open = session();
  sql::DialectStatement known = open.translations().read(statement);
  const auto* insert = std::get_if<sql::InsertStatement>(&*known.tree);
  if (insert != nullptr && insert->file && *insert->file != location_) {
    throw sql::statementError(
        "A PostgreSQL database cannot insert rows into another database. Copy them with an own "
        "connection to each.");
  }
  open.translations().translate(known);
  if (std::holds_alternative<sql::SelectStatement>(*known.tree)) {
    open.read(known.known->sql);
  } else {
    open.write(known.known->sql);
  }
}

std::unique_ptr<Recordset> PostgresConnection::openRecordset(const std::string& statement,
                                                             CursorType /*cursor*/, LockType lock) {
  (void)session();
  return std::make_unique<sql::ClientRecordset>(session_, statement, lock);
}

void PostgresConnection::visitRows(const std::string& statement, const RowVisitor& visit) {
  session().visitRows(statement, visit);
}

bool PostgresConnection::hasTable(std::string_view name) const {
  return session().catalogue().findTable("main", name).has_value();
}

// A role that only writes rows must not change tables, so nothing is sent if nothing is missing.
void PostgresConnection::createTable(const OwnTable& table) {
  const auto made = session().catalogue().findTable("main", table.Name);
  if (!made) return session().design(createTableStatement(table));
  for (const OwnColumn& column : table.Columns) {
    const bool isThere = sql::findColumn(*made, column.Name) != nullptr;
    if (!isThere && column.Type != OwnColumnType::key)
      session().design(addColumnStatement(made->name, column));
  }
}

bool PostgresConnection::hasIndex(std::string_view table,
                                  std::span<const std::string> columns) const {
  const auto known = session().catalogue().findTable("main", table);
  return known && hasIndexOn(session(), known->name, columns);
}

void PostgresConnection::createIndex(const TableIndex& index) {
  const auto table = session().catalogue().findTable("main", index.Table);
  if (!table) throw sql::missingTable(index.Table);
  if (session().catalogue().hasIndexNamed(index.Name)) return;
  std::vector<std::string> textColumns;
  for (const sql::ColumnShape& column : table->columns) {
    if (column.kind == sql::ColumnKind::text) textColumns.push_back(column.name);
  }
  TableIndex exact{index.Name, table->name, {}, index.IsUnique};
  for (const std::string& name : index.Columns) {
    const sql::ColumnShape* column = sql::findColumn(*table, name);
    if (column == nullptr) throw sql::missingColumn(name, table->name);
    exact.Columns.push_back(column->name);
  }
  session().design(createIndexStatement(exact, textColumns));
}

void PostgresConnection::begin() { session().begin(); }

void PostgresConnection::beginReading() { session().beginReading(); }

bool PostgresConnection::hasTransaction() const noexcept {
  return session_ && session_->hasTransaction();
}

void PostgresConnection::commit() { session().commit(); }

void PostgresConnection::rollback() noexcept {
  if (session_) session_->rollback();
}

void PostgresConnection::setLockPatience(std::chrono::milliseconds limit) {
  patience_.limit = limit;
  if (session_) session_->setLockPatience(limit);
}

std::optional<LeasedRange> PostgresConnection::leaseRange(std::int64_t job,
                                                          const std::string& worker,
                                                          std::chrono::seconds time) {
  return postgres::leaseRange(session(), job, worker, time);
}

bool PostgresConnection::extendLease(const LeasedRange& range, std::chrono::seconds time) {
  return postgres::extendLease(session(), range, time);
}

void PostgresConnection::limitTransaction(std::chrono::seconds time) {
  postgres::limitTransaction(session(), time);
}

std::int64_t PostgresConnection::secondsSince1970() { return serverSeconds(session()); }

}  // namespace postgres

ConnectionPtr postgresConnection(const std::string& location, const Patience& patience) {
  return std::make_shared<postgres::PostgresConnection>(location, patience);
}

}  // namespace pelmora
