// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/delivered_columns.h"

#include "adapters/sql_dialect/dialect_error.h"
#include "base/text_case.h"

#include <algorithm>
#include <utility>

namespace pelmora::sql {

namespace {

Expression columnOf(const std::string& table, const std::string& name) {
  Expression value;
  value.kind = ExpressionKind::column;
  value.qualifier = table;
  value.text = name;
  return value;
}

bool hasAggregate(const Expression& expression) {
  return expression.kind == ExpressionKind::aggregate ||
         std::ranges::any_of(expression.operands, hasAggregate);
}

// The delivered columns, with * written out.
std::vector<OutputColumn> writtenOut(const SelectStatement& select, const NameScope& scope) {
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
        columns.push_back({columnOf(table.name, column.name), column.name});
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

std::vector<ReadingTerm> termsOfTables(const FromClause& from, const NameScope& scope) {
  std::vector<std::string> names;
  listTables(from, names);
  std::vector<ReadingTerm> terms;
  for (const std::string& name : names) {
    const VisibleTable& table = scope.tableNamed(name);
    for (const std::string& column : table.shape.readingOrder)
      terms.push_back({columnOf(table.name, column), findColumn(table.shape, column) == nullptr});
  }
  return terms;
}

}  // namespace

std::vector<OutputColumn> outputColumns(const SelectStatement& select, const NameScope& scope) {
  auto columns = writtenOut(select, scope);
  checkGrouping(select, columns);
  return columns;
}

std::vector<ReadingTerm> readingTerms(const SelectStatement& select,
                                      const std::vector<OutputColumn>& columns,
                                      const NameScope& scope) {
  std::vector<ReadingTerm> terms;
  if (!select.groupBy.empty()) {
    for (const Expression& term : select.groupBy) terms.push_back({term});
  } else if (std::ranges::any_of(columns, [](const auto& c) { return hasAggregate(c.value); })) {
    return terms;  // one row
  } else if (select.distinct) {
    for (const OutputColumn& column : columns) {
      if (column.value.kind == ExpressionKind::column) terms.push_back({column.value});
    }
  } else if (select.from) {
    terms = termsOfTables(*select.from, scope);
  }
  return terms;
}

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
  const auto* values = std::get_if<std::vector<Expression>>(&insert.source);
  if ((values == nullptr ? selected.size() : values->size()) != result.size())
    throw statementError("Number of query values and destination fields are not the same.");
  return result;
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

}  // namespace pelmora::sql
