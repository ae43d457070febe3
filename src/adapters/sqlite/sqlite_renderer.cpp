// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_renderer.h"

#include "adapters/sql_dialect/delivered_columns.h"
#include "adapters/sql_dialect/dialect_error.h"
#include "adapters/sql_dialect/name_scope.h"
#include "adapters/sqlite/sqlite_expression.h"
#include "base/text_case.h"

#include <algorithm>
#include <utility>

namespace pelmora::sqlite {

// The statement's own words.
using namespace sql;

namespace {

constexpr std::string_view mainDatabase = "main";

std::string tableSource(const TableName& table, const NameScope& scope) {
  const VisibleTable& found = scope.tableNamed(table.visibleName());
  return quotedName(mainDatabase) + "." + quotedName(found.shape.name) + " AS " +
         quotedName(found.name);
}

std::string fromSource(const FromClause& from, const SqliteExpression& expression);

// The first source of a clause needs no brackets: joins go from left to right anyway.
std::string firstSource(const FromClause& from, const SqliteExpression& expression) {
  if (const auto* table = std::get_if<TableName>(&from.first))
    return tableSource(*table, expression.scope());
  return fromSource(std::get<std::vector<FromClause>>(from.first).front(), expression);
}

std::string joinedSource(const FromClause& from, const SqliteExpression& expression) {
  const bool isTable = from.joins.empty() && std::holds_alternative<TableName>(from.first);
  return isTable ? firstSource(from, expression) : "(" + fromSource(from, expression) + ")";
}

std::string fromSource(const FromClause& from, const SqliteExpression& expression) {
  std::string result = firstSource(from, expression);
  bool isSingle = from.joins.empty() || std::holds_alternative<TableName>(from.first);
  for (const Join& join : from.joins) {
    const std::string source = joinedSource(join.source, expression);
    const std::string condition =
        join.condition ? " ON " + expression.condition(*join.condition) : "";
    switch (join.kind) {
      case JoinKind::inner: result += " INNER JOIN " + source + condition; break;
      case JoinKind::cross: result += " INNER JOIN " + source; break;
      case JoinKind::left: result += " LEFT JOIN " + source + condition; break;
      case JoinKind::right:
        // The other way round it is a LEFT JOIN, which SQLite turns into look-ups by index.
        result = source + " LEFT JOIN " + (isSingle ? result : "(" + result + ")") + condition;
        break;
    }
    isSingle = false;
  }
  return result;
}

std::string whereClause(const std::optional<Expression>& where,
                        const SqliteExpression& expression) {
  return where ? " WHERE " + expression.condition(*where) : "";
}

std::string orderTerm(const OrderTerm& term, const std::vector<OutputColumn>& columns,
                      const SqliteExpression& expression) {
  std::string result;
  const bool isOutputName = term.value.kind == ExpressionKind::column &&
                            term.value.qualifier.empty() &&
                            !expression.scope().has(term.value.text);
  if (isOutputName) {
    for (const OutputColumn& column : columns) {
      if (equalNames(column.name, term.value.text)) result = expression.sortValue(column.value);
    }
  }
  if (result.empty()) result = expression.sortValue(term.value);
  return result + (term.descending ? " DESC" : "");
}

std::string orderClause(const SelectStatement& select, const std::vector<OutputColumn>& columns,
                        const SqliteExpression& expression) {
  std::vector<std::string> terms;
  for (const OrderTerm& term : select.orderBy)
    terms.push_back(orderTerm(term, columns, expression));
  for (const ReadingTerm& read : readingTerms(select, columns, expression.scope())) {
    std::string term = read.isHidden
                           ? quotedName(read.value.qualifier) + "." + quotedName(read.value.text)
                           : expression.sortValue(read.value);
    const bool isThere = std::ranges::any_of(
        terms, [&](const std::string& known) { return known == term || known == term + " DESC"; });
    if (!isThere) terms.push_back(std::move(term));
  }
  std::string clause;
  for (const std::string& term : terms) clause += (clause.empty() ? " ORDER BY " : ", ") + term;
  return clause;
}

// What becomes of the rows of a SELECT.
enum class Rows { compared, delivered, stored };

std::string columnList(const std::vector<OutputColumn>& columns, Rows rows,
                       const SqliteExpression& expression) {
  std::string list;
  for (const OutputColumn& column : columns) {
    if (!list.empty()) list += ", ";
    switch (rows) {
      case Rows::compared: list += expression.sortValue(column.value); break;
      case Rows::delivered: list += expression.value(column.value); break;
      case Rows::stored: list += expression.deliveredValue(column.value); break;
    }
    list += " AS " + quotedName(column.name);
  }
  return list;
}

NameScope scopeOf(const SelectStatement& select, const Catalogue& catalogue) {
  return select.from ? NameScope(*select.from, catalogue, mainDatabase) : NameScope();
}

std::string renderSelect(const SelectStatement& select, const SqliteExpression& expression,
                         Rows rows) {
  const auto columns = outputColumns(select, expression.scope());
  std::string sql = select.distinct ? "SELECT DISTINCT " : "SELECT ";
  sql += columnList(columns, select.distinct ? Rows::compared : rows, expression);
  if (select.from) sql += " FROM " + fromSource(*select.from, expression);
  sql += whereClause(select.where, expression);
  for (std::size_t i = 0; i < select.groupBy.size(); ++i) {
    sql += (i == 0 ? " GROUP BY " : ", ") + expression.sortValue(select.groupBy[i]);
  }
  if (select.having) sql += " HAVING " + expression.condition(*select.having);
  sql += orderClause(select, columns, expression);
  if (select.top) sql += " LIMIT " + std::to_string(*select.top);
  return sql;
}

std::string renderInsert(const InsertStatement& insert, const Catalogue& catalogue,
                         std::string_view outputDatabase, LiteralParameters* parameters) {
  const auto table = catalogue.findTable(outputDatabase, insert.table);
  if (!table) throw missingOutputTable(insert.table);
  const auto* select = std::get_if<SelectStatement>(&insert.source);
  const NameScope scope = select != nullptr ? scopeOf(*select, catalogue) : NameScope();
  const auto selected =
      select != nullptr ? outputColumns(*select, scope) : std::vector<OutputColumn>();
  const auto names = insertColumns(insert, *table, selected);
  std::string sql =
      "INSERT INTO " + quotedName(outputDatabase) + "." + quotedName(table->name) + " (";
  for (std::size_t i = 0; i < names.size(); ++i) sql += (i == 0 ? "" : ", ") + quotedName(names[i]);
  sql += ") ";
  const SqliteExpression expression(scope, parameters);
  if (select != nullptr) {
    // A sort by the name of a delivered literal writes it out a second time.
    return sql + renderSelect(*select, expression,
                              select->orderBy.empty() ? Rows::stored : Rows::delivered);
  }
  const auto& values = std::get<std::vector<Expression>>(insert.source);
  for (std::size_t i = 0; i < values.size(); ++i) {
    sql += (i == 0 ? "VALUES (" : ", ") + expression.value(values[i]);
  }
  return sql + ")";
}

std::string renderDelete(const DeleteStatement& statement, const Catalogue& catalogue,
                         LiteralParameters* parameters) {
  const NameScope scope(statement.table, catalogue, mainDatabase);
  return "DELETE FROM " + tableSource(statement.table, scope) +
         whereClause(statement.where, SqliteExpression(scope, parameters));
}

std::string renderUpdate(const UpdateStatement& statement, const Catalogue& catalogue,
                         LiteralParameters* parameters) {
  const NameScope scope(statement.table, catalogue, mainDatabase);
  const SqliteExpression expression(scope, parameters);
  std::string sql = "UPDATE " + tableSource(statement.table, scope) + " SET ";
  for (std::size_t i = 0; i < statement.assignments.size(); ++i) {
    const Assignment& assignment = statement.assignments[i];
    Expression column;
    column.kind = ExpressionKind::column;
    column.text = assignment.column;
    sql += (i == 0 ? "" : ", ") + quotedName(scope.resolve(column).column->name) + " = " +
           expression.value(assignment.value);
  }
  return sql + whereClause(statement.where, expression);
}

}  // namespace

std::string renderForSqlite(const Statement& statement, const Catalogue& catalogue,
                            std::string_view outputDatabase, LiteralParameters* parameters) {
  if (const auto* select = std::get_if<SelectStatement>(&statement)) {
    const NameScope scope = scopeOf(*select, catalogue);
    return renderSelect(*select, SqliteExpression(scope, parameters), Rows::delivered);
  }
  if (const auto* insert = std::get_if<InsertStatement>(&statement)) {
    return renderInsert(*insert, catalogue, outputDatabase, parameters);
  }
  if (const auto* erase = std::get_if<DeleteStatement>(&statement))
    return renderDelete(*erase, catalogue, parameters);
  return renderUpdate(std::get<UpdateStatement>(statement), catalogue, parameters);
}

std::string renderRowForSqlite(const SelectStatement& select, const Catalogue& catalogue) {
  const NameScope scope = scopeOf(select, catalogue);
  const TableName& table = std::get<TableName>(select.from->first);
  const SqliteExpression expression(scope, nullptr);
  return "SELECT " + columnList(outputColumns(select, scope), Rows::delivered, expression) +
         " FROM " + tableSource(table, scope) + " WHERE " + quotedName(table.visibleName()) +
         "._rowid_ = ?1";
}

}  // namespace pelmora::sqlite
