// SPDX-License-Identifier: MIT
#include "adapters/postgresql/postgres_select.h"

#include "adapters/postgresql/statement_names.h"
#include "base/text_case.h"

#include <algorithm>
#include <utility>

namespace pelmora::postgres {

// The statement's own words.
using namespace sql;

namespace {

std::string fromSource(const FromClause& from, const PostgresExpression& expression);

// A table, or a group of joins in brackets. The server takes no brackets around a single table.
std::string singleSource(const FromClause& from, const PostgresExpression& expression) {
  if (!from.joins.empty()) return "(" + fromSource(from, expression) + ")";
  if (const auto* table = std::get_if<TableName>(&from.first))
    return tableSource(*table, expression.scope());
  return singleSource(std::get<std::vector<FromClause>>(from.first).front(), expression);
}

const char* joinWords(JoinKind kind) {
  switch (kind) {
    case JoinKind::inner: return " INNER JOIN ";
    case JoinKind::left: return " LEFT JOIN ";
    case JoinKind::right: return " RIGHT JOIN ";
    case JoinKind::cross: break;
  }
  return " CROSS JOIN ";
}

std::string fromSource(const FromClause& from, const PostgresExpression& expression) {
  std::string result = singleSource({from.first, {}}, expression);
  for (const Join& join : from.joins) {
    const bool hasCondition = join.kind != JoinKind::cross && join.condition;
    result += joinWords(join.kind) + singleSource(join.source, expression);
    if (hasCondition) result += " ON " + expression.condition(*join.condition);
  }
  return result;
}

// One column to sort by, with its direction. Nulls come first, as in a file.
struct SortTerm {
  std::string key;
  bool isDescending = false;
  bool isNeverNull = false;

  [[nodiscard]] std::string written() const {
    if (isNeverNull) return key + (isDescending ? " DESC" : "");
    return key + (isDescending ? " DESC NULLS LAST" : " NULLS FIRST");
  }
};

std::string hiddenColumn(const Expression& column) {
  return quotedName(column.qualifier) + "." + quotedName(column.text);
}

// What the rows of the tables are read by where nothing else sorts them; empty where `columns` make
// one row of all.
std::string tableOrder(const SelectStatement& select, const std::vector<OutputColumn>& columns,
                       const NameScope& scope) {
  SelectStatement rowByRow;
  rowByRow.from = select.from;
  std::string order;
  for (const ReadingTerm& term : readingTerms(rowByRow, columns, scope))
    order += (order.empty() ? "" : ", ") + hiddenColumn(term.value);
  return order;
}

const Expression& sorted(const OrderTerm& term, const std::vector<OutputColumn>& columns,
                         const NameScope& scope) {
  const bool isOutputName = term.value.kind == ExpressionKind::column &&
                            term.value.qualifier.empty() && !scope.has(term.value.text);
  if (isOutputName) {
    for (auto column = columns.rbegin(); column != columns.rend(); ++column) {
      if (equalNames(column->name, term.value.text)) return column->value;
    }
  }
  return term.value;
}

std::vector<SortTerm> sortTerms(const SelectStatement& select,
                                const std::vector<OutputColumn>& columns,
                                const PostgresExpression& expression) {
  std::vector<SortTerm> terms;
  const auto add = [&](SortTerm term) {
    const bool isThere =
        std::ranges::any_of(terms, [&](const SortTerm& known) { return known.key == term.key; });
    if (!isThere) terms.push_back(std::move(term));
  };
  const bool isOneTable = select.from && select.from->joins.empty() && select.groupBy.empty();
  // Without a word about nulls an index delivers the order.
  const auto isKey = [&](const Expression& value) {
    if (!isOneTable || value.kind != ExpressionKind::column) return false;
    const ResolvedColumn found = expression.scope().resolve(value);
    return found.column->name == found.table->shape.key;
  };
  for (const OrderTerm& term : select.orderBy) {
    const Expression& value = sorted(term, columns, expression.scope());
    // The place of a literal among the columns is nothing to sort by.
    if (value.kind == ExpressionKind::number || value.kind == ExpressionKind::text) continue;
    for (std::string& key : expression.sortKeys(value))
      add({std::move(key), term.descending, isKey(value)});
  }
  for (const ReadingTerm& read : readingTerms(select, columns, expression.scope())) {
    if (read.isHidden) {
      add({hiddenColumn(read.value), false, isOneTable});
    } else {
      for (std::string& key : expression.sortKeys(read.value))
        add({std::move(key), false, isKey(read.value)});
    }
  }
  return terms;
}

std::string orderClause(const std::vector<SortTerm>& terms) {
  std::string clause;
  for (const SortTerm& term : terms)
    clause += (clause.empty() ? " ORDER BY " : ", ") + term.written();
  return clause;
}

// The table of a SELECT's rows and its conditions, without what is delivered and how it is sorted.
std::string sourceOfRows(const SelectStatement& select, const PostgresExpression& expression) {
  const PostgresExpression ofSingleRows(expression.scope());
  std::string sql;
  if (select.from) sql += " FROM " + fromSource(*select.from, ofSingleRows);
  sql += whereClause(select.where, ofSingleRows);
  std::string groups;
  for (const Expression& term : select.groupBy) {
    for (const std::string& key : expression.sortKeys(term))
      groups += (groups.empty() ? " GROUP BY " : ", ") + key;
  }
  sql += groups;
  if (select.having) sql += " HAVING " + expression.condition(*select.having);
  return sql;
}

std::string limitClause(const SelectStatement& select) {
  return select.top ? " LIMIT " + std::to_string(*select.top) : "";
}

// The first of the rows that are equal, in the order of the tables; then all of them are sorted.
std::string renderDistinct(const SelectStatement& select, const std::vector<OutputColumn>& columns,
                           const std::vector<std::string>& values,
                           const PostgresExpression& expression) {
  std::string keys;
  std::string inner;
  std::string outer;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    for (const std::string& key : expression.sortKeys(columns[i].value))
      keys += (keys.empty() ? "" : ", ") + key;
    const std::string name = "c" + std::to_string(i);
    inner += (i == 0 ? "" : ", ") + values[i] + " AS " + name;
    outer += (i == 0 ? "" : ", ") + ("d." + name) + " AS " + quotedName(columns[i].name);
  }
  std::vector<SortTerm> terms = sortTerms(select, columns, expression);
  for (std::size_t i = 0; i < terms.size(); ++i) {
    const std::string name = "o" + std::to_string(i);
    inner += ", " + terms[i].key + " AS " + name;
    terms[i].key = "d." + name;
  }
  const std::string order =
      select.groupBy.empty() ? tableOrder(select, columns, expression.scope()) : std::string();
  return "SELECT " + outer + " FROM (SELECT DISTINCT ON (" + keys + ") " + inner +
         sourceOfRows(select, expression) + " ORDER BY " + keys +
         (order.empty() ? "" : ", " + order) + ") AS d" + orderClause(terms) + limitClause(select);
}

}  // namespace

NameScope scopeOf(const SelectStatement& select, const Catalogue& catalogue) {
  return select.from ? NameScope(*select.from, catalogue, mainDatabase) : NameScope();
}

PostgresExpression expressionOf(const SelectStatement& select, const NameScope& scope) {
  return PostgresExpression(
      scope,
      select.groupBy.empty() ? PostgresExpression::Rows::single : PostgresExpression::Rows::grouped,
      tableOrder(select, {}, scope));
}

std::string tableSource(const TableName& table, const NameScope& scope) {
  const VisibleTable& found = scope.tableNamed(table.visibleName());
  return quotedName(found.shape.name) + " AS " + quotedName(found.name);
}

std::string whereClause(const std::optional<Expression>& where,
                        const PostgresExpression& expression) {
  return where ? " WHERE " + expression.condition(*where) : "";
}

std::string renderedSelect(const SelectStatement& select, const std::vector<OutputColumn>& columns,
                           const std::vector<std::string>& values,
                           const PostgresExpression& expression) {
  if (select.distinct) return renderDistinct(select, columns, values, expression);
  std::string list;
  for (std::size_t i = 0; i < columns.size(); ++i)
    list += (i == 0 ? "" : ", ") + values[i] + " AS " + quotedName(columns[i].name);
  return "SELECT " + list + sourceOfRows(select, expression) +
         orderClause(sortTerms(select, columns, expression)) + limitClause(select);
}

}  // namespace pelmora::postgres
