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
#include <utility>

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

SqliteCatalogue::SqliteCatalogue(sqlite3* database, bool remembersSchema)
    : KnownTables("main", Version::ofAllUsers),
      database_(database),
      questions_(database),
      readVersion_(database, "PRAGMA \"main\".schema_version") {
  const Moment moment(*this);
  if (remembersSchema) {
    firstSchema_ = schema();
    firstVersion_ = *versionOfMoment_;
  } else {
    PreparedStatement(database, "SELECT 1 FROM sqlite_master LIMIT 1").step();
  }
}

bool SqliteCatalogue::hasSameSchema() const {
  const Moment moment(*this);
  return !firstSchema_.empty() && *versionOfMoment_ == firstVersion_ && schema() == firstSchema_;
}

SqliteCatalogue::Moment::Moment(const SqliteCatalogue& catalogue)
    : catalogue_(catalogue.versionOfMoment_ ? nullptr : &catalogue) {
  if (catalogue_ == nullptr) return;
  try {
    catalogue.readVersion_.step();
  } catch (const Error&) {
    catalogue.readVersion_.reset();
    throw;
  }
  // The statement is left where it is: its end would be the end of the reading.
  catalogue.versionOfMoment_ = sqlite3_column_int64(catalogue.readVersion_.get(), 0);
}

SqliteCatalogue::Moment::~Moment() {
  if (catalogue_ == nullptr) return;
  catalogue_->versionOfMoment_.reset();
  catalogue_->readVersion_.reset();
}

std::int64_t SqliteCatalogue::readVersion() const {
  const Moment moment(*this);
  return *versionOfMoment_;
}

std::string SqliteCatalogue::schema() const {
  constexpr std::size_t most = std::size_t{1} << 20U;
  StatementPool::Use parts = questions_.take("SELECT * FROM \"main\".sqlite_master");
  std::string schema = "schema";  // of a database without tables, too
  while (parts->step()) {
    for (int column = 0; column < sqlite3_column_count(parts->get()); ++column) {
      const auto* text = static_cast<const char*>(sqlite3_column_blob(parts->get(), column));
      const int size = sqlite3_column_bytes(parts->get(), column);
      schema += text == nullptr ? "-" : std::to_string(size);
      schema += ':';
      if (text != nullptr) schema.append(text, static_cast<std::size_t>(size));
    }
    if (schema.size() > most) return {};
  }
  return schema;
}

// What the component stores in lies in tables. A view in the place of one could show anything, and
// one that is made of other views takes a time to prepare that doubles with each of them.
// Views and virtual tables have no pages of their own; nearly every table has. Only without pages
// is it worth asking what the definition contains, a statement that takes SQLite longer to prepare.
bool SqliteCatalogue::hasPages(std::string_view database, std::string_view name) const {
  StatementPool::Use without =
      questions_.take("SELECT 1 FROM " + quotedName(database) +
                      ".sqlite_master WHERE rootpage = 0 AND name = ?1 COLLATE NOCASE "
                      "AND type IN ('table', 'view')");
  without->bind(1, name);
  return !without->step();
}

void SqliteCatalogue::requireUsable(std::string_view database, std::string_view name) const {
  if (hasPages(database, name)) return;
  StatementPool::Use kind = questions_.take(
      "SELECT t.type, t.sql GLOB '*[^a-zA-Z0-9_][wW][iI][tT][hH][^a-zA-Z0-9_]*' OR EXISTS (SELECT "
      "1 FROM " +
      quotedName(database) +
      ".sqlite_master AS v WHERE v.type = 'view' AND v.name <> t.name AND "
      "instr(lower(t.sql), lower(v.name)) > 0) FROM " +
      quotedName(database) +
      ".sqlite_master AS t WHERE t.type IN ('table', 'view') AND t.rootpage = 0 "
      "AND t.name = ?1 COLLATE NOCASE");
  kind->bind(1, name);
  if (!kind->step()) return;
  const bool isView = columnText(kind->get(), 0) == "view";
  const bool isNested = sqlite3_column_int(kind->get(), 1) != 0;
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
  StatementPool::Use columns =
      questions_.take("SELECT t.name, c.name, c.type, c.pk, t.type FROM " + quotedName(database) +
                      ".sqlite_master AS t, pragma_table_info(t.name, ?2) AS c "
                      "WHERE t.type IN ('table', 'view') AND t.name = ?1 COLLATE NOCASE");
  columns->bind(1, name);
  columns->bind(2, database);
  std::optional<sql::TableShape> table;
  std::map<int, std::string> key;
  bool isView = false;
  while (columns->step()) {
    if (!table) table.emplace(sql::TableShape{columnText(columns->get(), 0), {}});
    table->columns.push_back(
        {columnText(columns->get(), 1), kindOf(columnText(columns->get(), 2))});
    const int placeInKey = sqlite3_column_int(columns->get(), 3);
    if (placeInKey > 0) key.emplace(placeInKey, table->columns.back().name);
    isView = columnText(columns->get(), 4) == "view";
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
  StatementPool::Use keyIsTable = questions_.take(
      "SELECT 1 FROM pragma_index_list(?1, ?2) AS l WHERE l.origin = 'pk' AND NOT EXISTS "
      "(SELECT 1 FROM pragma_index_xinfo(l.name, ?2) WHERE cid = -1)");
  keyIsTable->bind(1, table);
  keyIsTable->bind(2, database);
  return !keyIsTable->step();
}

}  // namespace pelmora::sqlite
