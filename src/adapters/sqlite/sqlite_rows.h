// Rows on their way between SQLite and a record set.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/catalogue.h"
#include "adapters/sql_engine/row_source.h"

#include <cstddef>
#include <span>

struct sqlite3_stmt;

namespace pelmora::sqlite {

class SqliteSession;

// Appends the current row of `statement`, which has as many columns as `rows`.
void appendRow(sqlite3_stmt* statement, sql::RowStore& rows);

// Writes the current row to `values`, one for each column.
void readRow(sqlite3_stmt* statement, std::span<Value> values);

// Inserts all rows of the batch. Errors: Error.
void insertRows(SqliteSession& session, const sql::TableShape& table, const sql::RowBatch& batch);

}  // namespace pelmora::sqlite
