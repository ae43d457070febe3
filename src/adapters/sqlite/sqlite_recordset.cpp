// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_recordset.h"

#include "adapters/sql_dialect/dialect_error.h"
#include "adapters/sql_dialect/name_scope.h"
#include "adapters/sql_dialect/sqlite_expression.h"
#include "adapters/sql_dialect/sqlite_renderer.h"
#include "base/text_case.h"
#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/sqlite_error.h"
#include "adapters/sqlite/sqlite_session.h"
#include "adapters/sqlite/transaction.h"
#include "base/run_time_error.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>
#include <utility>

namespace pelmora::sqlite {

namespace {

bool isNumber(const std::string& text) {
  double value = 0;
  const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), value);
  return code == std::errc() && end == text.data() + text.size();
}

// SQLite would keep NaN as null and words in a column of numbers.
void requireStorable(const Value& value, const sql::ColumnShape& column) {
  const auto fail = [&](RunTimeError number, const char* what) -> Error {
    return {static_cast<std::int32_t>(number), "Pelmora",
            what + (" in field '" + column.name + "'.")};
  };
  if (const auto* real = std::get_if<double>(&value)) {
    if (std::isnan(*real))
      throw fail(RunTimeError::typeMismatch, "Type mismatch: a value that is not a number");
    if (std::isinf(*real)) throw fail(RunTimeError::overflow, "Overflow: an infinite value");
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    if (column.kind == sql::ColumnKind::number && !isNumber(*text)) {
      throw fail(RunTimeError::typeMismatch, "Type mismatch: a text that is no number");
    }
  }
}

Error notUpdatableError() {
  return {notUpdatable, "Pelmora",
          "Current Recordset does not support updating. It must read the rows of one table as they "
          "are."};
}

}  // namespace

SqliteRecordset::SqliteRecordset(std::shared_ptr<SqliteSession> session, std::string statement,
                                 LockType lock)
    : session_(std::move(session)), statement_(std::move(statement)), lock_(lock) {
  load();
}

const sql::SelectStatement& SqliteRecordset::select() const {
  return std::get<sql::SelectStatement>(*translation_->tree);
}

void SqliteRecordset::load() {
  DialectStatement statement = session_->translations().read(statement_);
  if (!std::holds_alternative<sql::SelectStatement>(*statement.tree))
    throw sql::statementError("Only a SELECT statement delivers rows.");
  StatementPool::Use query = session_->translations().prepare(statement);
  const int columns = sqlite3_column_count(query->get());
  std::vector<std::string> fields;
  for (int i = 0; i < columns; ++i) fields.emplace_back(sqlite3_column_name(query->get(), i));
  RowStore rows(fields.size());
  while (session_->step(*query)) rows.appendRow(query->get());
  if (rows.rows() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    throw makeError(RunTimeError::overflow);
  }
  translation_ = statement.known;
  fields_ = std::move(fields);
  rows_ = std::move(rows);
  row_ = 0;
  current_.assign(fields_.size(), Value());
}

void SqliteRecordset::requireOpen() const {
  if (isOpen_) return;
  throw Error(recordsetClosed, "Pelmora", "Operation is not allowed when the object is closed.");
}

std::int32_t SqliteRecordset::recordCount() const {
  requireOpen();
  return static_cast<std::int32_t>(rows_.rows());
}

std::size_t SqliteRecordset::fieldIndex(std::string_view name) const {
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    if (equalNames(fields_[i], name)) return i;
  }
  throw makeError(RunTimeError::noSuchField);
}

void SqliteRecordset::moveNext() {
  if (atEnd()) throw makeError(RunTimeError::endOfRows);
  ++row_;
}

const Value& SqliteRecordset::value(std::size_t field) const {
  if (field >= fields_.size()) throw makeError(RunTimeError::noSuchField);
  if (atEnd()) throw makeError(RunTimeError::endOfRows);
  rows_.read(row_, field, current_[field]);
  return current_[field];
}

const sql::TableShape& SqliteRecordset::outputTable() {
  if (outputTable_) return *outputTable_;
  const sql::TableName* table = sql::updatableTable(select());
  if (table == nullptr) throw notUpdatableError();
  session_->requireWritable();
  outputTable_ = session_->catalogue().findTable("main", table->name);
  if (!outputTable_) throw notUpdatableError();
  return *outputTable_;
}

SqliteRecordset::Batch SqliteRecordset::newBatch(std::span<const std::string_view> fields) {
  Batch batch{{fields.begin(), fields.end()}, {}, RowStore(fields.size())};
  for (const std::string_view field : fields) {
    const sql::ColumnShape* column = sql::findColumn(outputTable(), fields_[fieldIndex(field)]);
    if (column == nullptr) throw notUpdatableError();
    batch.columns.push_back(*column);
  }
  return batch;
}

void SqliteRecordset::addRow(std::span<const std::string_view> fields,
                             std::span<const Value> values) {
  requireOpen();
  if (fields.size() != values.size() || fields.empty())
    throw makeError(RunTimeError::invalidArgument);
  const bool isOneAtATime = lock_ == LockType::optimistic;
  if (kept_.empty() || !std::ranges::equal(kept_.back().fields, fields))
    kept_.push_back(newBatch(fields));
  Batch& batch = kept_.back();
  for (std::size_t i = 0; i < values.size(); ++i) requireStorable(values[i], batch.columns[i]);
  batch.rows.appendRow(values);
  if (!isOneAtATime) return;
  const Batch row = std::move(kept_.back());
  kept_.clear();
  storeAtOnce(row);
}

std::string SqliteRecordset::insertStatement(const Batch& batch, std::size_t rows) const {
  std::string names;
  std::string row;
  for (const sql::ColumnShape& column : batch.columns) {
    names += (names.empty() ? "" : ", ") + sql::quotedName(column.name);
    row += row.empty() ? "(?" : ", ?";
  }
  std::string statement =
      "INSERT INTO \"main\"." + sql::quotedName(outputTable_->name) + " (" + names + ") VALUES ";
  for (std::size_t i = 0; i < rows; ++i) statement += (i == 0 ? "" : ", ") + row + ")";
  return statement;
}

// Many rows in one run cost a quarter of what they cost one by one.
void SqliteRecordset::store(const Batch& batch) {
  constexpr std::size_t mostParameters = 999;  // of the engine's older builds
  constexpr std::array<std::size_t, 3> portions{16, 4, 1};
  std::size_t row = 0;
  for (const std::size_t portion : portions) {
    const bool isTooWide = portion > 1 && portion * batch.columns.size() > mostParameters;
    if (isTooWide || batch.rows.rows() - row < portion) continue;
    StatementPool::Use insert = session_->pool().take(insertStatement(batch, portion));
    for (; batch.rows.rows() - row >= portion; row += portion) {
      batch.rows.bindRows(row, portion, *insert);
      session_->step(*insert);
      insert->reset();
    }
  }
}

void SqliteRecordset::storeAtOnce(const Batch& batch) {
  session_->requireWritable();
  const DatabaseHandle& handle = session_->handle();
  Transaction transaction(handle);
  store(batch);
  RowStore added(fields_.size());
  {
    // Read back as stored: the generated key, and values as the columns have converted them.
    StatementPool::Use stored =
        session_->pool().take(session_->translations().rowSelect(*translation_));
    stored->bind(1, static_cast<std::int64_t>(sqlite3_last_insert_rowid(handle.get())));
    if (!session_->step(*stored)) throw notUpdatableError();
    added.appendRow(stored->get());
  }
  transaction.commit();
  for (std::size_t i = 0; i < fields_.size(); ++i) added.read(0, i, current_[i]);
  rows_.appendRow(current_);
  row_ = rows_.rows() - 1;
}

void SqliteRecordset::updateBatch() {
  requireOpen();
  if (kept_.empty()) return;
  session_->requireWritable();
  const DatabaseHandle& handle = session_->handle();
  Transaction transaction(handle);
  for (const Batch& batch : kept_) store(batch);
  transaction.commit();
  kept_.clear();
}

void SqliteRecordset::requery() {
  requireOpen();
  if (std::ranges::any_of(kept_, [](const Batch& batch) { return batch.rows.rows() > 0; })) {
    throw Error(changesPending, "Pelmora",
                "Operation is not allowed in this context: added rows have not been stored yet.");
  }
  kept_.clear();
  load();
}

void SqliteRecordset::close() {
  isOpen_ = false;
  rows_.clear();
  kept_.clear();
}

}  // namespace pelmora::sqlite
