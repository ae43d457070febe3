// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_session.h"

#include "adapters/sql_dialect/dialect_error.h"
#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/sqlite_error.h"
#include "adapters/sqlite/sqlite_file.h"
#include "adapters/sqlite/sqlite_renderer.h"
#include "adapters/sqlite/sqlite_rows.h"
#include "adapters/sqlite/transaction.h"

#include <sqlite3.h>

#include <utility>
#include <vector>

namespace pelmora::sqlite {

SqliteSession::SqliteSession(const std::string& path, const Patience& patience,
                             std::shared_ptr<RestingDatabases> resting)
    : resting_(std::move(resting)) {
  if (resting_) open_ = resting_->wake(path, patience);
  if (open_) return;
  open_ = std::make_unique<OpenDatabase>(checkedSqliteFile(path), OpenMode::existing, patience,
                                         resting_ != nullptr);
}

SqliteSession::SqliteSession()
    : open_(std::make_unique<OpenDatabase>("", OpenMode::memory, Patience(), false)) {}

void SqliteSession::close() {
  if (open_ && resting_) resting_->rest(std::move(open_));
  open_.reset();
}

OpenDatabase& SqliteSession::open() const {
  if (open_) return *open_;
  throw Error(connectionClosed, "Pelmora",
              "The connection cannot be used to perform this operation. It is closed.");
}

std::string SqliteSession::file() const {
  const char* name = sqlite3_db_filename(database(), "main");
  return name == nullptr ? "" : name;
}

StatementPool::Use SqliteSession::prepare(sql::DialectStatement& statement) {
  translations().translate(statement);
  StatementPool::Use use = pool().take(statement.known->sql);
  int number = 0;
  for (const auto& [literal, form] : statement.known->parameters) {
    const sql::PlainLiteral& value = statement.shape->literals[literal];
    ++number;
    if (form == sql::LiteralParameters::Form::number) {
      use->bind(number, value.whole.value());
    } else {
      use->bind(number, std::string_view(value.text));
    }
  }
  return use;
}

void SqliteSession::requireWritable() const {
  if (whyFrozen_) {
    throw Error(updateRefused, "Pelmora", "Operation must use an updateable query. " + *whyFrozen_);
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
  if (!open_) return;
  // Some failures have made SQLite roll back already.
  const bool isOpen = sqlite3_get_autocommit(database()) == 0;
  const bool hasRead = isOpen && sqlite3_txn_state(database(), "main") != SQLITE_TXN_WRITE;
  if (!hasRead) forgetSchema();
  if (isOpen) sqlite3_exec(database(), "ROLLBACK", nullptr, nullptr, nullptr);
}

// Every transaction that changes tables counts on from the schema version that is stored: after one
// that is undone, a version that was seen before means other tables.
void SqliteSession::forgetSchema() noexcept {
  open_->catalogue.forget();
  open_->translations.clear();
  open_->designed.clear();
}

void SqliteSession::design(const std::string& statement) {
  requireWritable();
  const std::int64_t version = catalogue().schemaVersion();
  if (version != open_->designedVersion) open_->designed.clear();
  open_->designedVersion = version;
  if (open_->designed.contains(statement)) return;
  handle().run(statement.c_str());
  if (catalogue().schemaVersion() == version) open_->designed.insert(statement);
}

sql::SelectedRows SqliteSession::select(const std::string& text) {
  sql::DialectStatement statement = translations().readSelect(text);
  const SqliteCatalogue::Moment moment(catalogue());
  StatementPool::Use query = prepare(statement);
  sql::SelectedRows selected = rowsOf(*query);
  selected.translation = statement.known;
  return selected;
}

sql::SelectedRows SqliteSession::select(const sql::SelectStatement& statement) {
  PreparedStatement query(database(), renderForSqlite(sql::Statement(statement), catalogue()));
  return rowsOf(query);
}

sql::SelectedRows SqliteSession::rowsOf(PreparedStatement& query) {
  sql::SelectedRows selected;
  const int columns = sqlite3_column_count(query.get());
  for (int i = 0; i < columns; ++i)
    selected.fields.emplace_back(sqlite3_column_name(query.get(), i));
  selected.rows = sql::RowStore(selected.fields.size());
  while (step(query)) appendRow(query.get(), selected.rows);
  return selected;
}

void SqliteSession::visitRows(const std::string& text, const RowVisitor& visit) {
  sql::DialectStatement statement = translations().readSelect(text);
  std::optional<SqliteCatalogue::Moment> moment(std::in_place, catalogue());
  StatementPool::Use query = prepare(statement);
  bool hasRow = step(*query);
  moment.reset();  // from the first row on, the statement itself holds it
  std::vector<Value> values(static_cast<std::size_t>(sqlite3_column_count(query->get())));
  for (; hasRow; hasRow = step(*query)) {
    readRow(query->get(), values);
    visit(values);
  }
}

sql::TableShape SqliteSession::tableToChange(const std::string& name) {
  requireWritable();
  if (auto table = catalogue().findTable("main", name)) return *table;
  throw sql::missingTable(name);
}

void SqliteSession::store(const sql::TableShape& table, std::span<const sql::RowBatch> batches) {
  requireWritable();
  Transaction transaction(handle());
  for (const sql::RowBatch& batch : batches) insertRows(*this, table, batch);
  transaction.commit();
}

std::optional<sql::RowStore> SqliteSession::storeAndRead(const sql::TableShape& table,
                                                         const sql::RowBatch& row,
                                                         const sql::Translation& select,
                                                         const sql::RowInTheWay* unless) {
  requireWritable();
  Transaction transaction(handle());
  if (unless != nullptr && sql::isThere(*this, *unless)) return std::nullopt;
  insertRows(*this, table, row);
  sql::RowStore stored(0);
  {
    // Read back as stored: the generated key, and values as the columns have converted them.
    StatementPool::Use added = pool().take(translations().rowSelect(select));
    added->bind(1, static_cast<std::int64_t>(sqlite3_last_insert_rowid(database())));
    stored = sql::RowStore(static_cast<std::size_t>(sqlite3_column_count(added->get())));
    if (!step(*added)) throw sql::missingTable(table.name);
    appendRow(added->get(), stored);
  }
  transaction.commit();
  return stored;
}

bool SqliteSession::step(PreparedStatement& statement) {
  StatementFault& fault = open().fault;
  fault.reset();
  try {
    return statement.step();
  } catch (const Error&) {
    if (fault) throw Error(*fault);
    throw;
  }
}

}  // namespace pelmora::sqlite
