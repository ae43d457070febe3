// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_catalogue.h"

#include "adapters/sql_dialect/name_scope.h"
#include "adapters/sqlite/sqlite_expression.h"
#include "adapters/sqlite/sqlite_error.h"
#include "store/curve_schema.h"

#include <pelmora/error.h>
#include <sqlite3.h>

#include <algorithm>
#include <map>
#include <string>

namespace pelmora::sqlite {

namespace {

std::string columnText(sqlite3_stmt* statement, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
  return text == nullptr ? std::string() : std::string(text);
}

// After the rules by which SQLite gives a column its affinity. A declared type that names none of
// its storage classes (DATE, NUMERIC ...) promises nothing.
sql::ColumnKind kindOf(std::string declared) {
  std::ranges::transform(declared, declared.begin(), [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
  const auto names = [&](std::string_view part) {
    return declared.find(part) != std::string::npos;
  };
  if (names("INT")) return sql::ColumnKind::number;
  if (names("CHAR") || names("CLOB") || names("TEXT")) return sql::ColumnKind::text;
  if (names("BLOB")) return sql::ColumnKind::asStored;
  if (names("REAL") || names("FLOA") || names("DOUB")) return sql::ColumnKind::number;
  return sql::ColumnKind::asStored;
}

// Of a curve database, those that other hosts do not know included.
bool isCurveTable(std::string_view name) {
  return isOwnTableName(name) || findSchemaTable(name) != nullptr;
}

}  // namespace

SqliteCatalogue::SqliteCatalogue(sqlite3* database)
    : KnownTables("main"),
      database_(database),
      readVersion_(database, "PRAGMA \"main\".schema_version") {}

std::int64_t SqliteCatalogue::readVersion() const {
  try {
    readVersion_.step();
    const std::int64_t version = sqlite3_column_int64(readVersion_.get(), 0);
    readVersion_.reset();
    return version;
  } catch (const Error&) {
    readVersion_.reset();
    throw;
  }
}

// What the component stores in lies in tables. A view in the place of one could show anything, and
// one that is made of other views takes a time to prepare that doubles with each of them.
void SqliteCatalogue::requireUsable(std::string_view database, std::string_view name) const {
  PreparedStatement kind(
      database_,
      "SELECT t.type, t.sql GLOB '*[^a-zA-Z0-9_][wW][iI][tT][hH][^a-zA-Z0-9_]*' OR EXISTS (SELECT "
      "1 FROM " +
          quotedName(database) +
          ".sqlite_master AS v WHERE v.type = 'view' AND v.name <> t.name AND "
          "instr(lower(t.sql), lower(v.name)) > 0) FROM " +
          quotedName(database) +
          ".sqlite_master AS t WHERE t.type IN ('table', 'view') AND t.rootpage = 0 "
          "AND t.name = ?1 COLLATE NOCASE");
  kind.bind(1, name);
  if (!kind.step()) return;
  const bool isView = columnText(kind.get(), 0) == "view";
  const bool isNested = sqlite3_column_int(kind.get(), 1) != 0;
  if (isView && !isNested && !isCurveTable(name)) return;
  const char* file = sqlite3_db_filename(database_, std::string(database).c_str());
  throw Error(
      untrustedSchema, "Pelmora",
      "'" + std::string(name) + "' in file '" + (file == nullptr ? "" : file) + "' is " +
          (isView ? (isCurveTable(name) ? "a view" : "a view of views") : "a virtual table") +
          ", not a table. Make it a table, or name another database.");
}

std::optional<sql::TableShape> SqliteCatalogue::readTable(std::string_view database,
                                                          std::string_view name) const {
  requireUsable(database, name);
  PreparedStatement columns(
      database_, "SELECT t.name, c.name, c.type, c.pk, t.type FROM " + quotedName(database) +
                     ".sqlite_master AS t, pragma_table_info(t.name, ?2) AS c "
                     "WHERE t.type IN ('table', 'view') AND t.name = ?1 COLLATE NOCASE");
  columns.bind(1, name);
  columns.bind(2, database);
  std::optional<sql::TableShape> table;
  std::map<int, std::string> key;
  bool isView = false;
  while (columns.step()) {
    if (!table) table.emplace(sql::TableShape{columnText(columns.get(), 0), {}});
    table->columns.push_back({columnText(columns.get(), 1), kindOf(columnText(columns.get(), 2))});
    const int placeInKey = sqlite3_column_int(columns.get(), 3);
    if (placeInKey > 0) key.emplace(placeInKey, table->columns.back().name);
    isView = columnText(columns.get(), 4) == "view";
  }
  if (table && !isView) {
    std::vector<std::string> keyColumns;
    for (const auto& [place, column] : key) keyColumns.push_back(column);
    table->readingOrder = readingOrder(database, *table, keyColumns);
  }
  return table;
}

// Rows have ids that rise in the order in which they were stored, unless a key takes their place.
std::vector<std::string> SqliteCatalogue::readingOrder(std::string_view database,
                                                       const sql::TableShape& table,
                                                       const std::vector<std::string>& key) const {
  const SchemaTable* known = findSchemaTable(table.name);
  if (known != nullptr && known->Order == ReadingOrder::byKey) {
    const std::string& id = known->Columns.front().Name;
    if (sql::findColumn(table, id) != nullptr) return {id};
  }
  if (!key.empty() && !hasRowIds(database, table.name)) return key;
  for (const char* name : {"_rowid_", "rowid", "oid"}) {
    if (sql::findColumn(table, name) == nullptr) return {name};
  }
  return key;
}

// The index of a key ends in the row's id, unless it is the table itself.
bool SqliteCatalogue::hasRowIds(std::string_view database, std::string_view table) const {
  PreparedStatement keyIsTable(
      database_,
      "SELECT 1 FROM pragma_index_list(?1, ?2) AS l WHERE l.origin = 'pk' AND NOT EXISTS "
      "(SELECT 1 FROM pragma_index_xinfo(l.name, ?2) WHERE cid = -1)");
  keyIsTable.bind(1, table);
  keyIsTable.bind(2, database);
  return !keyIsTable.step();
}

}  // namespace pelmora::sqlite
