// SPDX-License-Identifier: MIT
#include "adapters/postgresql/postgres_catalogue.h"

#include "adapters/postgresql/cell_text.h"
#include "adapters/postgresql/client.h"
#include "adapters/postgresql/curve_tables.h"
#include "adapters/sql_dialect/name_scope.h"
#include "base/text_case.h"
#include "store/curve_schema.h"

namespace pelmora::postgres {

namespace {

constexpr const char* allColumns =
    "SELECT c.relname::text, a.attname::text, a.atttypid::bigint, a.attidentity <> '' "
    "FROM pg_class c JOIN pg_attribute a ON a.attrelid = c.oid "
    "WHERE c.relnamespace = quote_ident(current_schema())::regnamespace AND c.relkind IN ('r', "
    "'p', 'v', 'm') "
    "AND a.attnum > 0 AND NOT a.attisdropped ORDER BY c.oid, a.attnum";

constexpr const char* allIndexes =
    "SELECT relname::text FROM pg_class WHERE relkind = 'i' AND relnamespace = "
    "quote_ident(current_schema())::regnamespace";

std::string_view textAt(const sql::RowStore& rows, std::size_t row, std::size_t column) {
  const sql::CellView cell = rows.cell(row, column);
  const auto* text = std::get_if<std::string_view>(&cell);
  return text == nullptr ? std::string_view() : *text;
}

std::int64_t numberAt(const sql::RowStore& rows, std::size_t row, std::size_t column) {
  const sql::CellView cell = rows.cell(row, column);
  const auto* number = std::get_if<std::int64_t>(&cell);
  return number == nullptr ? 0 : *number;
}

sql::ColumnShape shapeOf(std::string_view name, std::int64_t type) {
  sql::ColumnShape shape{std::string(name), sql::ColumnKind::text};
  switch (type) {
    case type_id::int8:
    case type_id::int4:
    case type_id::int2:
      shape.kind = sql::ColumnKind::number;
      shape.isWhole = true;
      break;
    case type_id::float4:
    case type_id::float8:
    case type_id::numeric: shape.kind = sql::ColumnKind::number; break;
    case type_id::jsonb: shape.kind = sql::ColumnKind::asStored; break;
    default: break;
  }
  return shape;
}

// As the schema has it. Other tables come in the order of what the database counts.
void setReadingOrder(sql::TableShape& table, bool countsRows) {
  const SchemaTable* known = findSchemaTable(table.name);
  if (known != nullptr && known->Order == ReadingOrder::byKey) {
    const std::string& id = known->Columns.front().Name;
    if (sql::findColumn(table, id) != nullptr) {
      table.readingOrder = {id};
      return;
    }
  }
  if (countsRows) {
    table.readingOrder = {orderColumn};
  } else if (!table.key.empty()) {
    table.readingOrder = {table.key};
  }
}

}  // namespace

void PostgresCatalogue::changed() {
  ++version_;
  tables_.clear();
  indexes_.clear();
  forget();
}

bool PostgresCatalogue::hasIndexNamed(const std::string& name) const {
  if (indexes_.empty()) {
    const ServerRows names = run_(allIndexes);
    for (std::size_t row = 0; row < names.rows.rows(); ++row)
      indexes_.emplace(textAt(names.rows, row, 0));
  }
  return indexes_.contains(name);
}

void PostgresCatalogue::readAll() const {
  const ServerRows columns = run_(allColumns);
  std::vector<sql::TableShape> tables;
  bool countsRows = false;
  const auto finish = [&] {
    if (!tables.empty()) setReadingOrder(tables.back(), countsRows);
    countsRows = false;
  };
  for (std::size_t row = 0; row < columns.rows.rows(); ++row) {
    const std::string_view table = textAt(columns.rows, row, 0);
    const std::string_view column = textAt(columns.rows, row, 1);
    if (tables.empty() || tables.back().name != table) {
      finish();
      tables.push_back({std::string(table), {}});
    }
    if (column == orderColumn) {
      countsRows = true;
      continue;
    }
    tables.back().columns.push_back(shapeOf(column, numberAt(columns.rows, row, 2)));
    const bool isKey = numberAt(columns.rows, row, 3) != 0;
    if (isKey) tables.back().key = column;
  }
  finish();
  tables_ = std::move(tables);
}

std::optional<sql::TableShape> PostgresCatalogue::readTable(std::string_view /*database*/,
                                                            std::string_view name) const {
  const auto find = [&]() -> std::optional<sql::TableShape> {
    for (const sql::TableShape& table : tables_) {
      if (equalNames(table.name, name)) return table;
    }
    return std::nullopt;
  };
  if (auto table = find()) return table;
  readAll();
  return find();
}

}  // namespace pelmora::postgres
