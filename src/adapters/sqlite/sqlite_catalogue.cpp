// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_catalogue.h"

#include "adapters/sql_dialect/sqlite_expression.h"

#include <pelmora/error.h>
#include <sqlite3.h>

#include <algorithm>
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

}  // namespace

SqliteCatalogue::SqliteCatalogue(sqlite3* database)
    : database_(database), readVersion_(database, "PRAGMA \"main\".schema_version") {}

std::int64_t SqliteCatalogue::schemaVersion() const {
  try {
    readVersion_.step();
    const std::int64_t version = sqlite3_column_int64(readVersion_.get(), 0);
    readVersion_.reset();
    if (version != knownVersion_) known_.clear();
    knownVersion_ = version;
    return version;
  } catch (const Error&) {
    readVersion_.reset();
    throw;
  }
}

void SqliteCatalogue::forget() const {
  known_.clear();
  knownVersion_ = -1;
}

std::optional<sql::TableShape> SqliteCatalogue::findTable(std::string_view database,
                                                          std::string_view name) const {
  if (database == "main") (void)schemaVersion();
  return findAsTold(database, name);
}

std::optional<sql::TableShape> SqliteCatalogue::findAsTold(std::string_view database,
                                                           std::string_view name) const {
  if (database != "main") return readTable(database, name);
  if (const auto found = known_.find(name); found != known_.end()) return found->second;
  auto table = readTable(database, name);
  if (table) known_.emplace(name, *table);
  return table;
}

std::optional<sql::TableShape> SqliteCatalogue::readTable(std::string_view database,
                                                          std::string_view name) const {
  PreparedStatement columns(database_,
                            "SELECT t.name, c.name, c.type FROM " + sql::quotedName(database) +
                                ".sqlite_master AS t, pragma_table_info(t.name, ?2) AS c "
                                "WHERE t.type IN ('table', 'view') AND t.name = ?1 COLLATE NOCASE");
  columns.bind(1, name);
  columns.bind(2, database);
  std::optional<sql::TableShape> table;
  while (columns.step()) {
    if (!table) table.emplace(sql::TableShape{columnText(columns.get(), 0), {}});
    table->columns.push_back({columnText(columns.get(), 1), kindOf(columnText(columns.get(), 2))});
  }
  return table;
}

}  // namespace pelmora::sqlite
