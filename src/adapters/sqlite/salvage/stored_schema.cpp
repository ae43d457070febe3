// SPDX-License-Identifier: MIT
#include "adapters/sqlite/salvage/stored_schema.h"

#include "base/text_case.h"
#include "adapters/sqlite/curve_schema.h"
#include "adapters/sqlite/database_handle.h"
#include "adapters/sqlite/prepared_statement.h"

#include <pelmora/error.h>

#include <sqlite3.h>

#include <map>
#include <optional>
#include <string_view>
#include <utility>

namespace pelmora::sqlite::salvage {
namespace {

struct SchemaRow {
  std::string type, name, table, sql;
  PageNumber root = 0;
  bool operator==(const SchemaRow&) const = default;
};

std::optional<SchemaRow> schemaRow(const Record& record, PageNumber pages) {
  if (record.size() != 5) return std::nullopt;
  const auto *type = std::get_if<std::string>(&record[0]),
             *name = std::get_if<std::string>(&record[1]),
             *table = std::get_if<std::string>(&record[2]),
             *sql = std::get_if<std::string>(&record[4]);
  const auto* root = std::get_if<std::int64_t>(&record[3]);
  if (!type || !name || !table || !root || *root < 0 || *root > pages) return std::nullopt;
  if (*type != "table" && *type != "index" && *type != "view" && *type != "trigger")
    return std::nullopt;
  if (sql == nullptr || !sql->starts_with("CREATE ")) return std::nullopt;
  return SchemaRow{*type, *name, *table, *sql, static_cast<PageNumber>(*root)};
}

// Rows of the schema, by name. A name with two different rows stands for nothing.
class SchemaRows {
 public:
  void add(const SchemaRow& row) {
    const auto [at, isNew] = rows_.emplace(row.name, row);
    if (!isNew && !(at->second == row)) at->second.type.clear();
  }
  void addMissing(const SchemaRow& row) { rows_.emplace(row.name, row); }
  [[nodiscard]] const std::map<std::string, SchemaRow>& rows() const { return rows_; }

 private:
  std::map<std::string, SchemaRow> rows_;
};

// Reads columns out of a statement by letting the engine make the table, in memory.
class StatementReader {
 public:
  std::optional<StoredTable> table(const SchemaRow& row) {
    if (!run(row.sql, "CREATE TABLE ")) return std::nullopt;
    StoredTable table{row.name, row.sql, row.root, {}, {}, -1, {}};
    PreparedStatement columns(memory_.get(),
                              "SELECT name, type, pk, hidden FROM pragma_table_xinfo(?1)");
    columns.bind(1, std::string_view(row.name));
    int keys = 0;
    while (columns.step()) {
      if (sqlite3_column_int(columns.get(), 3) != 0) return std::nullopt;  // computed columns
      if (sqlite3_column_int(columns.get(), 2) > 0) {
        ++keys;
        if (equalNames(textAt(columns, 1), "INTEGER"))
          table.key = static_cast<int>(table.columns.size());
      }
      table.columns.push_back(textAt(columns, 0));
      table.types.push_back(textAt(columns, 1));
    }
    if (keys != 1) table.key = -1;
    PreparedStatement list(memory_.get(), "SELECT wr FROM pragma_table_list WHERE name = ?1");
    list.bind(1, std::string_view(row.name));
    if (!list.step() || sqlite3_column_int(list.get(), 0) != 0) return std::nullopt;
    return table;
  }

  std::optional<StoredIndex> index(const SchemaRow& row) {
    if (!run(row.sql, "CREATE INDEX ")) return std::nullopt;
    StoredIndex index{row.name, row.sql, row.root, {}};
    PreparedStatement columns(memory_.get(),
                              "SELECT i.cid, l.partial, x.desc FROM pragma_index_list(?2) AS l, "
                              "pragma_index_info(l.name) AS i, pragma_index_xinfo(l.name) AS x "
                              "WHERE l.name = ?1 AND x.seqno = i.seqno ORDER BY i.seqno");
    columns.bind(1, std::string_view(row.name));
    columns.bind(2, std::string_view(row.table));
    while (columns.step()) {
      const int column = sqlite3_column_int(columns.get(), 0);
      if (column < 0 || sqlite3_column_int(columns.get(), 1) != 0 ||
          sqlite3_column_int(columns.get(), 2) != 0)
        return std::nullopt;  // of expressions, of some rows, or falling
      index.columns.push_back(static_cast<std::size_t>(column));
    }
    if (index.columns.empty()) return std::nullopt;
    return index;
  }

 private:
  bool run(const std::string& sql, std::string_view start) {
    if (!sql.starts_with(start)) return false;
    try {
      memory_.run(sql.c_str());
      return true;
    } catch (const Error&) {
      return false;
    }
  }

  DatabaseHandle memory_{"", OpenMode::memory};
};

// "sqlite_sequence" cannot be made by a statement.
StoredTable sequenceTable(const SchemaRow& row) {
  return {row.name, "", row.root, {"name", "seq"}, {"", ""}, -1, {}};
}

StoredSchema schemaOf(const SchemaRows& found) {
  StoredSchema schema;
  StatementReader statements;
  for (const auto& [name, row] : found.rows()) {
    if (row.type == "table") {
      if (name == "sqlite_sequence") {
        schema.tables.push_back(sequenceTable(row));
      } else if (name.starts_with("sqlite_")) {
        continue;  // the engine makes its other tables anew
      } else if (auto table = statements.table(row)) {
        schema.tables.push_back(std::move(*table));
      } else {
        schema.others.push_back("table " + name);
      }
    } else if (row.type != "index") {
      schema.others.push_back((row.type.empty() ? "table or index" : row.type) + " " + name);
    }
  }
  for (const auto& [name, row] : found.rows()) {
    if (row.type != "index") continue;
    for (StoredTable& table : schema.tables) {
      if (!equalNames(table.name, row.table)) continue;
      if (auto index = statements.index(row)) table.indexes.push_back(std::move(*index));
    }
  }
  return schema;
}

std::vector<SchemaRow> rowsOfNewDatabase() {
  const DatabaseHandle fresh("", OpenMode::memory);
  createCurveTables(fresh);
  PreparedStatement schema(
      fresh.get(),
      "SELECT type, name, tbl_name, sql, rootpage FROM sqlite_master WHERE sql IS NOT NULL");
  std::vector<SchemaRow> rows;
  while (schema.step()) {
    rows.push_back({textAt(schema, 0), textAt(schema, 1), textAt(schema, 2), textAt(schema, 3),
                    static_cast<PageNumber>(sqlite3_column_int64(schema.get(), 4))});
  }
  return rows;
}

// How a table was declared in words may change from version to version; where its tree begins
// depends only on the order in which the tables were made.
bool isInSamePlace(const SchemaRow& a, const SchemaRow& b) {
  return a.type == b.type && a.table == b.table && a.root == b.root;
}

// Tables stay where they were made. A file whose trees begin where those of a new curve database
// do, each of its kind, has the tables of which the names are lost in the same places too.
void addTablesOfNewDatabase(const PageFile& file, SchemaRows& found) {
  const auto rows = rowsOfNewDatabase();
  std::vector<std::uint8_t> bytes;
  std::size_t fitting = 0;
  for (const SchemaRow& row : rows) {
    const auto known = found.rows().find(row.name);
    if (known != found.rows().end() && !isInSamePlace(known->second, row)) return;
    if (!file.read(row.root, bytes)) continue;
    const auto page = readTreePage(bytes, row.root);
    if (!page) continue;  // damaged
    if (page->isOfTable() != (row.type == "table")) return;
    ++fitting;
  }
  if (fitting * 3 < rows.size() * 2) return;
  for (const SchemaRow& row : rows) found.addMissing(row);
}

}  // namespace

StoredSchema storedSchema(const PageFile& file, PageClaims& claims) {
  TreeWalk walk(file, claims);
  walk.claim(1, TreeKind::table);
  SchemaRows found;
  const auto add = [&](std::int64_t, const Record& record) {
    if (const auto row = schemaRow(record, file.pageCount())) found.add(*row);
  };
  const bool isWhole = walk.read(1, TreeKind::table, add, [](PageNumber) {});
  if (!isWhole) {
    TreeWalk leaves(file, claims);
    for (PageNumber page = 1; page <= file.pageCount(); ++page) (void)leaves.readLeaf(page, add);
    addTablesOfNewDatabase(file, found);
  }
  StoredSchema schema = schemaOf(found);
  schema.isWhole = isWhole;
  return schema;
}

}  // namespace pelmora::sqlite::salvage
