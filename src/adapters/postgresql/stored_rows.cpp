// Added rows on their way to their table.
// SPDX-License-Identifier: MIT
#include "adapters/postgresql/cell_text.h"
#include "adapters/postgresql/postgres_renderer.h"
#include "adapters/postgresql/postgres_session.h"
#include "adapters/postgresql/server_error.h"
#include "adapters/postgresql/statement_names.h"
#include "adapters/sql_dialect/dialect_error.h"

#include <algorithm>

namespace pelmora::postgres {

namespace {

// Up to this many rows are quicker in one statement than by COPY, which needs two round trips.
constexpr std::size_t mostInStatement = 100;

std::string insertion(const sql::TableShape& table, const std::string& alias,
                      const sql::RowBatch& batch) {
  std::string sql = "INSERT INTO " + quotedName(table.name) +
                    (alias.empty() ? "" : " AS " + quotedName(alias)) + " (";
  for (std::size_t i = 0; i < batch.columns.size(); ++i)
    sql += (i == 0 ? "" : ", ") + quotedName(batch.columns[i].name);
  sql += ") VALUES ";
  for (std::size_t row = 0; row < batch.rows.rows(); ++row) {
    sql += row == 0 ? "(" : ", (";
    for (std::size_t i = 0; i < batch.columns.size(); ++i) {
      sql += (i == 0 ? "" : ", ") + literalOf(cellText(batch.rows.cell(row, i), batch.columns[i]));
    }
    sql += ")";
  }
  return sql;
}

bool bringsKeys(const sql::TableShape& table, const sql::RowBatch& batch) {
  return !table.key.empty() && std::ranges::any_of(batch.columns, [&](const auto& column) {
    return column.name == table.key;
  });
}

std::string inOneStatement(const sql::TableShape& table, const sql::RowBatch& batch) {
  const std::string sql = insertion(table, {}, batch);
  return bringsKeys(table, batch) ? sql + "; " + countOnFrom(table.name, table.key) : sql;
}

void copyRows(Client& client, const sql::TableShape& table, const sql::RowBatch& batch) {
  std::vector<std::string> columns;
  for (const sql::ColumnShape& column : batch.columns) columns.push_back(quotedName(column.name));
  std::size_t row = 0;
  client.copy(quotedName(table.name), columns, [&](std::string& line) {
    if (row == batch.rows.rows()) return false;
    for (std::size_t i = 0; i < batch.columns.size(); ++i) {
      if (i > 0) line += '\t';
      appendCopyField(cellText(batch.rows.cell(row, i), batch.columns[i]), line);
    }
    ++row;
    return true;
  });
  if (bringsKeys(table, batch)) client.run(countOnFrom(table.name, table.key));
}

// A value that cannot be stored is found before anything is sent.
void requireStorable(std::span<const sql::RowBatch> batches) {
  for (const sql::RowBatch& batch : batches) {
    for (std::size_t row = 0; row < batch.rows.rows(); ++row) {
      for (std::size_t i = 0; i < batch.columns.size(); ++i)
        (void)cellText(batch.rows.cell(row, i), batch.columns[i]);
    }
  }
}

}  // namespace

void PostgresSession::insertRows(const sql::TableShape& table, const sql::RowBatch& batch) {
  if (batch.rows.rows() == 0) return;
  if (batch.rows.rows() <= mostInStatement) {
    client_->run(inOneStatement(table, batch));
  } else {
    copyRows(*client_, table, batch);
  }
}

void PostgresSession::storeTogether(const sql::TableShape& table,
                                    std::span<const sql::RowBatch> batches) {
  try {
    client_->run(nextPart);
    for (const sql::RowBatch& batch : batches) insertRows(table, batch);
  } catch (const ServerError& error) {
    throw undonePart(error);
  }
}

void PostgresSession::store(const sql::TableShape& table, std::span<const sql::RowBatch> batches) {
  requireWritable();
  requireStorable(batches);
  const bool isShort = batches.size() == 1 && batches[0].rows.rows() > 0 &&
                       batches[0].rows.rows() <= mostInStatement;
  if (isShort) {
    write(inOneStatement(table, batches[0]));
    return;
  }
  if (hasTransaction()) return storeTogether(table, batches);
  begin();
  try {
    storeTogether(table, batches);
    commit();
  } catch (...) {
    rollback();
    throw;
  }
}

std::optional<sql::RowStore> PostgresSession::storeAndRead(const sql::TableShape& table,
                                                           const sql::RowBatch& row,
                                                           const sql::Translation& select,
                                                           const sql::RowInTheWay* unless) {
  requireWritable();
  const auto& tree = std::get<sql::SelectStatement>(*select.tree);
  const std::string alias = std::get<sql::TableName>(tree.from->first).visibleName();
  const std::string sql =
      insertion(table, alias, row) + " RETURNING " + translations_.rowSelect(select);
  const bool isAlone = unless == nullptr && !bringsKeys(table, row);
  if (isAlone) return write(sql).rows;
  const bool isOwn = !hasTransaction();
  if (isOwn) begin();
  std::optional<sql::RowStore> stored;
  try {
    if (unless == nullptr || !sql::isThere(*this, *unless)) {
      stored = write(sql).rows;
      if (bringsKeys(table, row)) write(countOnFrom(table.name, table.key));
    }
    if (isOwn) commit();
  } catch (...) {
    if (isOwn) rollback();
    throw;
  }
  return stored;
}

}  // namespace pelmora::postgres
