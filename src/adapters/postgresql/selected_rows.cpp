// Rows on their way from their tables: all at once, or some thousand at a time.
// SPDX-License-Identifier: MIT
#include "adapters/postgresql/postgres_session.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::postgres {

sql::DialectStatement PostgresSession::readSelect(const std::string& text) {
  sql::DialectStatement statement = translations_.readSelect(text);
  if (isClosed_) requireConnection();
  translations_.translate(statement);
  return statement;
}

sql::SelectedRows PostgresSession::select(const std::string& text) {
  const sql::DialectStatement statement = readSelect(text);
  ServerRows rows = read(statement.known->sql);
  return {statement.known, std::move(rows.fields), std::move(rows.rows)};
}

void PostgresSession::visitRows(const std::string& text, const RowVisitor& visit) {
  const sql::DialectStatement statement = readSelect(text);
  const bool isOwn = !hasTransaction();
  if (isOwn) beginReading();
  try {
    visitPortions(statement.known->sql, visit);
  } catch (...) {
    if (isOwn) rollback();
    throw;
  }
  if (isOwn) rollback();
}

// The cursor lasts as long as the transaction: to close it would be a round trip of its own.
void PostgresSession::visitPortions(const std::string& sql, const RowVisitor& visit) {
  constexpr std::size_t portion = 4000;
  const std::string cursor = "pelmora_rows_" + std::to_string(++cursors_);
  const std::string fetch = "FETCH " + std::to_string(portion) + " FROM " + cursor;
  std::string next = "DECLARE " + cursor + " NO SCROLL CURSOR FOR " + sql + "; " + fetch;
  std::vector<Value> values;
  for (std::size_t delivered = portion; delivered == portion; next = fetch) {
    const ServerRows rows = read(next);
    delivered = rows.rows.rows();
    values.resize(rows.fields.size());
    for (std::size_t row = 0; row < delivered; ++row) {
      for (std::size_t i = 0; i < values.size(); ++i) rows.rows.read(row, i, values[i]);
      visit(values);
    }
  }
}

}  // namespace pelmora::postgres
