// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_rows.h"

#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/sqlite_expression.h"
#include "adapters/sqlite/sqlite_session.h"

#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <string>
#include <variant>

namespace pelmora::sqlite {

namespace {

sql::CellView cellOf(sqlite3_stmt* statement, int column) {
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER: return std::int64_t{sqlite3_column_int64(statement, column)};
    case SQLITE_FLOAT: return sqlite3_column_double(statement, column);
    case SQLITE_NULL: return std::monostate();
    default: break;
  }
  // A database may keep its texts as UTF-16: they are asked for as UTF-8.
  const void* bytes = sqlite3_column_type(statement, column) == SQLITE_TEXT
                          ? sqlite3_column_text(statement, column)
                          : sqlite3_column_blob(statement, column);
  return std::string_view(static_cast<const char*>(bytes),
                          static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
}

void bindCell(PreparedStatement& statement, int parameter, const sql::CellView& cell) {
  if (const auto* integer = std::get_if<std::int64_t>(&cell)) {
    statement.bind(parameter, *integer);
  } else if (const auto* real = std::get_if<double>(&cell)) {
    statement.bind(parameter, *real);
  } else if (const auto* text = std::get_if<std::string_view>(&cell)) {
    statement.bind(parameter, *text);
  } else {
    statement.bindNull(parameter);
  }
}

std::string insertStatement(const sql::TableShape& table, const sql::RowBatch& batch,
                            std::size_t rows) {
  std::string names;
  std::string row;
  for (const sql::ColumnShape& column : batch.columns) {
    names += (names.empty() ? "" : ", ") + quotedName(column.name);
    row += row.empty() ? "(?" : ", ?";
  }
  std::string statement =
      "INSERT INTO \"main\"." + quotedName(table.name) + " (" + names + ") VALUES ";
  for (std::size_t i = 0; i < rows; ++i) statement += (i == 0 ? "" : ", ") + row + ")";
  return statement;
}

}  // namespace

void appendRow(sqlite3_stmt* statement, sql::RowStore& rows) {
  for (std::size_t i = 0; i < rows.columns(); ++i)
    rows.append(cellOf(statement, static_cast<int>(i)));
  rows.endRow();
}

void readRow(sqlite3_stmt* statement, std::span<Value> values) {
  for (std::size_t i = 0; i < values.size(); ++i)
    sql::assign(values[i], cellOf(statement, static_cast<int>(i)));
}

// Many rows in one run cost a quarter of what they cost one by one. Preparing the statement for
// them takes as long as several of its runs save.
void insertRows(SqliteSession& session, const sql::TableShape& table, const sql::RowBatch& batch) {
  constexpr std::size_t mostParameters = 999;  // of the engine's older builds
  constexpr std::array<std::size_t, 3> portions{16, 4, 1};
  constexpr std::size_t fewestRuns = 4;
  const std::size_t columns = batch.columns.size();
  std::size_t row = 0;
  for (const std::size_t portion : portions) {
    const std::size_t runs = (batch.rows.rows() - row) / portion;
    const bool isTooWide = portion * columns > mostParameters;
    if (runs == 0 || (portion > 1 && (isTooWide || runs < fewestRuns))) continue;
    StatementPool::Use insert = session.pool().take(insertStatement(table, batch, portion));
    for (; batch.rows.rows() - row >= portion; row += portion) {
      for (std::size_t i = 0; i < portion * columns; ++i)
        bindCell(*insert, static_cast<int>(i + 1), batch.rows.cell(row + i / columns, i % columns));
      session.step(*insert);
      insert->reset();
    }
  }
}

}  // namespace pelmora::sqlite
