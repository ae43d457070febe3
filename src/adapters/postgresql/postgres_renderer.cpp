// SPDX-License-Identifier: MIT
#include "adapters/postgresql/postgres_renderer.h"

#include "adapters/postgresql/postgres_select.h"
#include "adapters/postgresql/statement_names.h"
#include "adapters/sql_dialect/dialect_error.h"

#include <algorithm>
#include <variant>

namespace pelmora::postgres {

// The statement's own words.
using namespace sql;

namespace {

std::string renderSelect(const SelectStatement& select, const Catalogue& catalogue) {
  const NameScope scope = scopeOf(select, catalogue);
  const PostgresExpression expression = expressionOf(select, scope);
  const auto columns = outputColumns(select, scope);
  std::vector<std::string> values;
  for (const OutputColumn& column : columns) values.push_back(expression.value(column.value).sql);
  return renderedSelect(select, columns, values, expression);
}

const ColumnShape& shapeOf(const TableShape& table, const std::string& name) {
  return *findColumn(table, name);
}

std::string renderInsert(const InsertStatement& insert, const Catalogue& catalogue) {
  const auto table = catalogue.findTable(mainDatabase, insert.table);
  if (!table) throw missingOutputTable(insert.table);
  const auto* select = std::get_if<SelectStatement>(&insert.source);
  const NameScope scope = select != nullptr ? scopeOf(*select, catalogue) : NameScope();
  const auto selected =
      select != nullptr ? outputColumns(*select, scope) : std::vector<OutputColumn>();
  const auto names = insertColumns(insert, *table, selected);
  std::string sql = "INSERT INTO " + quotedName(table->name) + " (";
  for (std::size_t i = 0; i < names.size(); ++i) sql += (i == 0 ? "" : ", ") + quotedName(names[i]);
  sql += ") ";
  if (select != nullptr) {
    const PostgresExpression expression = expressionOf(*select, scope);
    std::vector<std::string> values;
    for (std::size_t i = 0; i < names.size(); ++i)
      values.push_back(expression.storedValue(selected[i].value, shapeOf(*table, names[i])));
    sql += renderedSelect(*select, selected, values, expression);
  } else {
    const PostgresExpression expression(scope);
    const auto& values = std::get<std::vector<Expression>>(insert.source);
    for (std::size_t i = 0; i < values.size(); ++i) {
      sql += (i == 0 ? "VALUES (" : ", ") +
             expression.storedValue(values[i], shapeOf(*table, names[i]));
    }
    sql += ")";
  }
  const bool bringsKeys =
      !table->key.empty() && std::ranges::find(names, table->key) != names.end();
  return bringsKeys ? sql + "; " + countOnFrom(table->name, table->key) : sql;
}

std::string renderDelete(const DeleteStatement& statement, const Catalogue& catalogue) {
  const NameScope scope(statement.table, catalogue, mainDatabase);
  return "DELETE FROM " + tableSource(statement.table, scope) +
         whereClause(statement.where, PostgresExpression(scope));
}

std::string renderUpdate(const UpdateStatement& statement, const Catalogue& catalogue) {
  const NameScope scope(statement.table, catalogue, mainDatabase);
  const PostgresExpression expression(scope);
  std::string sql = "UPDATE " + tableSource(statement.table, scope) + " SET ";
  for (std::size_t i = 0; i < statement.assignments.size(); ++i) {
    const Assignment& assignment = statement.assignments[i];
    Expression column;
    column.kind = ExpressionKind::column;
    column.text = assignment.column;
    const ColumnShape& shape = *scope.resolve(column).column;
    sql += (i == 0 ? "" : ", ") + quotedName(shape.name) + " = " +
           expression.storedValue(assignment.value, shape);
  }
  return sql + whereClause(statement.where, expression);
}

}  // namespace

std::string countOnFrom(const std::string& table, const std::string& key) {
  const std::string sequence = "pg_get_serial_sequence(" + quotedText(quotedName(table)) + ", " +
                               quotedText(key) + ")::regclass";
  return "SELECT setval(" + sequence + ", m) FROM (SELECT max(" + quotedName(key) + ") AS m FROM " +
         quotedName(table) + ") AS k WHERE m > 0 AND m > coalesce(pg_sequence_last_value(" +
         sequence + "), 0)";
}

std::string PostgresWriter::write(const Statement& statement, const Catalogue& tables,
                                  LiteralParameters* /*parameters*/) const {
  if (const auto* select = std::get_if<SelectStatement>(&statement))
    return renderSelect(*select, tables);
  if (const auto* insert = std::get_if<InsertStatement>(&statement))
    return renderInsert(*insert, tables);
  if (const auto* erase = std::get_if<DeleteStatement>(&statement))
    return renderDelete(*erase, tables);
  return renderUpdate(std::get<UpdateStatement>(statement), tables);
}

std::string PostgresWriter::writeRow(const SelectStatement& select, const Catalogue& tables) const {
  const NameScope scope = scopeOf(select, tables);
  const PostgresExpression expression(scope);
  std::string list;
  for (const OutputColumn& column : outputColumns(select, scope)) {
    list += (list.empty() ? "" : ", ") + expression.value(column.value).sql + " AS " +
            quotedName(column.name);
  }
  return list;
}

}  // namespace pelmora::postgres
