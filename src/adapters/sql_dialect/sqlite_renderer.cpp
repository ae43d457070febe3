// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/sqlite_renderer.h"

#include "adapters/sql_dialect/dialect_error.h"
#include "adapters/sql_dialect/name_scope.h"
#include "adapters/sql_dialect/sqlite_expression.h"
#include "base/text_case.h"

#include <algorithm>
#include <utility>

namespace pelmora::sql {

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

bool hasAggregate(const Expression& expression) {
  return expression.kind == ExpressionKind::aggregate ||
         std::ranges::any_of(expression.operands, hasAggregate);
}

struct OutputColumn {
  Expression value;
  std::string name;
};

// The delivered columns, with * written out.
std::vector<OutputColumn> outputColumns(const SelectStatement& select, const NameScope& scope) {
  std::vector<OutputColumn> columns;
  for (const SelectItem& item : select.items) {
    if (!item.allColumns) {
      std::string name = item.alias;
      if (name.empty() && item.value.kind == ExpressionKind::column) {
        name = scope.resolve(item.value).column->name;
      }
      if (name.empty()) name = "Expr" + std::to_string(1000 + columns.size());
      columns.push_back({item.value, std::move(name)});
      continue;
    }
    if (scope.tables().empty())
      throw statementError("Query input must contain at least one table or query.");
    for (const VisibleTable& table : scope.tables()) {
      if (!item.qualifier.empty() && &table != &scope.tableNamed(item.qualifier)) continue;
      for (const ColumnShape& column : table.shape.columns) {
        Expression value;
        value.kind = ExpressionKind::column;
        value.qualifier = table.name;
        value.text = column.name;
        columns.push_back({std::move(value), column.name});
      }
    }
  }
  return columns;
}

void checkGrouping(const SelectStatement& select, const std::vector<OutputColumn>& columns) {
  const bool isGrouped = !select.groupBy.empty() || std::ranges::any_of(columns, [](const auto& c) {
    return hasAggregate(c.value);
  });
  if (!isGrouped) return;
  for (const OutputColumn& column : columns) {
    const auto isSame = [&](const Expression& term) {
      return equalNames(term.text, column.value.text);
    };
    if (column.value.kind == ExpressionKind::column &&
        std::ranges::none_of(select.groupBy, isSame)) {
      throw statementError(
          "You tried to execute a query that does not include the specified expression '" +
          column.value.text + "' as part of an aggregate function.");
    }
  }
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

// The tables of a clause, those that an outer join keeps whole before the others.
void listTables(const FromClause& from, std::vector<std::string>& names) {
  if (const auto* table = std::get_if<TableName>(&from.first)) {
    names.push_back(table->visibleName());
  } else {
    listTables(std::get<std::vector<FromClause>>(from.first).front(), names);
  }
  for (const Join& join : from.joins) {
    std::vector<std::string> joined;
    listTables(join.source, joined);
    names.insert(join.kind == JoinKind::right ? names.begin() : names.end(), joined.begin(),
                 joined.end());
  }
}

std::string readingTerm(const VisibleTable& table, const std::string& column,
                        const SqliteExpression& expression) {
  if (findColumn(table.shape, column) == nullptr)
    return quotedName(table.name) + "." + quotedName(column);
  Expression value;
  value.kind = ExpressionKind::column;
  value.qualifier = table.name;
  value.text = column;
  return expression.sortValue(value);
}

// What the rows are read by beyond their own ORDER BY, so that no order is left to the engine.
std::vector<std::string> readingTerms(const SelectStatement& select,
                                      const std::vector<OutputColumn>& columns,
                                      const SqliteExpression& expression) {
  std::vector<std::string> terms;
  if (!select.groupBy.empty()) {
    for (const Expression& term : select.groupBy) terms.push_back(expression.sortValue(term));
  } else if (std::ranges::any_of(columns, [](const auto& c) { return hasAggregate(c.value); })) {
    return terms;  // one row
  } else if (select.distinct) {
    for (const OutputColumn& column : columns) {
      if (column.value.kind == ExpressionKind::column)
        terms.push_back(expression.sortValue(column.value));
    }
  } else if (select.from) {
    std::vector<std::string> names;
    listTables(*select.from, names);
    for (const std::string& name : names) {
      const VisibleTable& table = expression.scope().tableNamed(name);
      for (const std::string& column : table.shape.readingOrder)
        terms.push_back(readingTerm(table, column, expression));
    }
  }
  return terms;
}

std::string orderClause(const SelectStatement& select, const std::vector<OutputColumn>& columns,
                        const SqliteExpression& expression) {
  std::vector<std::string> terms;
  for (const OrderTerm& term : select.orderBy)
    terms.push_back(orderTerm(term, columns, expression));
  for (std::string& term : readingTerms(select, columns, expression)) {
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
  checkGrouping(select, columns);
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

// The columns that an INSERT fills, as its table spells them.
std::vector<std::string> insertColumns(const InsertStatement& insert, const TableShape& table,
                                       const std::vector<OutputColumn>& selected) {
  std::vector<std::string> names = insert.columns;
  if (names.empty()) {
    for (const OutputColumn& column : selected) names.push_back(column.name);
  }
  if (names.empty()) {
    for (const ColumnShape& column : table.columns) names.push_back(column.name);
  }
  std::vector<std::string> result;
  for (const std::string& name : names) {
    const ColumnShape* column = findColumn(table, name);
    if (column == nullptr) {
      throw statementError(
          "The INSERT INTO statement contains the following unknown field name: '" + name +
          "'. Make sure you have typed the name correctly, and try the operation again.");
    }
    if (std::ranges::find(result, column->name) != result.end()) {
      throw statementError("Duplicate output destination '" + column->name + "'.");
    }
    result.push_back(column->name);
  }
  return result;
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
  const std::size_t given =
      select != nullptr ? selected.size() : std::get<std::vector<Expression>>(insert.source).size();
  if (given != names.size()) {
    throw statementError("Number of query values and destination fields are not the same.");
  }

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

const TableName* updatableTable(const SelectStatement& select) {
  const bool isPlain = select.from && select.from->joins.empty() && !select.distinct &&
                       select.groupBy.empty() && !select.having;
  if (!isPlain ||
      std::ranges::any_of(select.items, [](const auto& i) { return hasAggregate(i.value); })) {
    return nullptr;
  }
  return std::get_if<TableName>(&select.from->first);
}

std::string renderRowForSqlite(const SelectStatement& select, const Catalogue& catalogue) {
  const NameScope scope = scopeOf(select, catalogue);
  const TableName& table = std::get<TableName>(select.from->first);
  const SqliteExpression expression(scope, nullptr);
  return "SELECT " + columnList(outputColumns(select, scope), Rows::delivered, expression) +
         " FROM " + tableSource(table, scope) + " WHERE " + quotedName(table.visibleName()) +
         "._rowid_ = ?1";
}

}  // namespace pelmora::sql
