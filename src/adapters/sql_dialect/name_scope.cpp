// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/name_scope.h"

#include "adapters/sql_dialect/dialect_error.h"
#include "base/text_case.h"

#include <algorithm>
#include <utility>

namespace pelmora::sql {

const ColumnShape* findColumn(const TableShape& table, std::string_view name) {
  const auto found = std::ranges::find_if(
      table.columns, [&](const ColumnShape& column) { return equalNames(column.name, name); });
  return found == table.columns.end() ? nullptr : &*found;
}

NameScope::NameScope(const FromClause& from, const Catalogue& catalogue,
                     std::string_view database) {
  add(from, catalogue, database);
}

NameScope::NameScope(const TableName& table, const Catalogue& catalogue,
                     std::string_view database) {
  add(table, catalogue, database);
}

void NameScope::add(const FromClause& from, const Catalogue& catalogue, std::string_view database) {
  if (const auto* table = std::get_if<TableName>(&from.first)) {
    add(*table, catalogue, database);
  } else {
    add(std::get<std::vector<FromClause>>(from.first).front(), catalogue, database);
  }
  for (const Join& join : from.joins) add(join.source, catalogue, database);
}

void NameScope::add(const TableName& table, const Catalogue& catalogue, std::string_view database) {
  auto shape = catalogue.findTable(database, table.name);
  if (!shape) throw missingTable(table.name);
  for (const VisibleTable& known : tables_) {
    if (equalNames(known.name, table.visibleName())) throw syntaxErrorIn("FROM clause");
  }
  tables_.push_back({table.visibleName(), std::move(*shape)});
}

const VisibleTable& NameScope::tableNamed(std::string_view name) const {
  for (const VisibleTable& table : tables_) {
    if (equalNames(table.name, name)) return table;
  }
  throw missingTable(name);
}

bool NameScope::has(std::string_view column) const {
  return std::ranges::any_of(tables_, [&](const VisibleTable& table) {
    return findColumn(table.shape, column) != nullptr;
  });
}

ResolvedColumn NameScope::resolve(const Expression& column) const {
  ResolvedColumn found;
  std::string places;
  for (const VisibleTable& table : tables_) {
    if (!column.qualifier.empty() && !equalNames(table.name, column.qualifier)) continue;
    places += (places.empty() ? "" : ", ") + table.name;
    const ColumnShape* shape = findColumn(table.shape, column.text);
    if (shape == nullptr) continue;
    if (found.column != nullptr) {
      throw statementError("The specified field '" + column.text +
                           "' could refer to more than one table listed in the FROM clause of your "
                           "SQL statement.");
    }
    found = {&table, shape};
  }
  if (found.column != nullptr) return found;
  const std::string name =
      column.qualifier.empty() ? column.text : column.qualifier + "." + column.text;
  throw missingColumn(name, places.empty() ? "any table of the statement" : places);
}

}  // namespace pelmora::sql
