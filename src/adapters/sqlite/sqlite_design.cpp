// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_design.h"

#include "adapters/sqlite/sqlite_expression.h"
#include "base/text_case.h"
#include "adapters/sqlite/prepared_statement.h"

#include <sqlite3.h>

#include <map>
#include <vector>

namespace pelmora::sqlite {

namespace {

const char* declaration(OwnColumnType type) {
  switch (type) {
    case OwnColumnType::key: return " INTEGER PRIMARY KEY AUTOINCREMENT";
    case OwnColumnType::whole: return " INTEGER";
    case OwnColumnType::real: return " REAL";
    case OwnColumnType::text: return " TEXT COLLATE NOCASE";
    case OwnColumnType::anything: break;
  }
  return " COLLATE NOCASE";
}

std::string columnText(const PreparedStatement& statement, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), column));
  return text == nullptr ? std::string() : std::string(text);
}

// The columns of each index, and of the key, under its name.
std::map<std::string, std::vector<std::string>> indexesOf(sqlite3* database,
                                                          std::string_view table) {
  std::map<std::string, std::vector<std::string>> indexes;
  PreparedStatement columns(
      database,
      "SELECT l.name, c.name FROM pragma_index_list(?1, 'main') AS l, "
      "pragma_index_info(l.name, 'main') AS c WHERE l.partial = 0 ORDER BY l.seq, c.seqno");
  columns.bind(1, table);
  while (columns.step()) indexes[columnText(columns, 0)].push_back(columnText(columns, 1));
  PreparedStatement key(database,
                        "SELECT name FROM pragma_table_info(?1, 'main') WHERE pk > 0 ORDER BY pk");
  key.bind(1, table);
  while (key.step()) indexes[""].push_back(columnText(key, 0));
  return indexes;
}

bool beginsWith(const std::vector<std::string>& index, std::span<const std::string> columns) {
  if (index.size() < columns.size()) return false;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (!equalNames(index[i], columns[i])) return false;
  }
  return true;
}

}  // namespace

std::string createTableStatement(const OwnTable& table) {
  std::string columns;
  for (const OwnColumn& column : table.Columns) {
    columns += (columns.empty() ? "" : ", ") + quotedName(column.Name) + declaration(column.Type);
  }
  return "CREATE TABLE IF NOT EXISTS \"main\"." + quotedName(table.Name) + " (" + columns + ")";
}

std::string addColumnStatement(const std::string& table, const OwnColumn& column) {
  return "ALTER TABLE \"main\"." + quotedName(table) + " ADD COLUMN " + quotedName(column.Name) +
         declaration(column.Type);
}

std::string createIndexStatement(const TableIndex& index) {
  std::string columns;
  for (const std::string& column : index.Columns) {
    columns += (columns.empty() ? "" : ", ") + quotedName(column);
  }
  const std::string create = index.IsUnique ? "CREATE UNIQUE INDEX" : "CREATE INDEX";
  return create + " IF NOT EXISTS \"main\"." + quotedName(index.Name) + " ON " +
         quotedName(index.Table) + " (" + columns + ")";
}

bool hasIndex(sqlite3* database, std::string_view table, std::span<const std::string> columns) {
  for (const auto& [name, indexed] : indexesOf(database, table)) {
    if (beginsWith(indexed, columns)) return true;
  }
  return false;
}

}  // namespace pelmora::sqlite
