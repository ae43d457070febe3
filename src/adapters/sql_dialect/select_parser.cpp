// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/select_parser.h"

#include "adapters/sql_dialect/dialect_error.h"

#include <charconv>
#include <cstdint>
#include <system_error>
#include <utility>
#include <vector>

namespace pelmora::sql {

namespace {

constexpr int deepestJoinGroup = 50;

FromClause parseFrom(StatementTokens& statement, int depth);

Error misspelledSelect() {
  return statementError(
      "The SELECT statement includes a reserved word or an argument name that is misspelled or "
      "missing, or the punctuation is incorrect.");
}

std::optional<std::int64_t> parseTop(StatementTokens& statement) {
  if (!statement.tokens.acceptWord("TOP")) return std::nullopt;
  const std::string_view digits = statement.tokens.peek().source;
  std::int64_t count = 0;
  const auto [end, code] = std::from_chars(digits.data(), digits.data() + digits.size(), count);
  if (statement.tokens.peek().kind != TokenKind::number || code != std::errc() ||
      end != digits.data() + digits.size()) {
    throw misspelledSelect();
  }
  statement.tokens.take();
  return count;
}

SelectItem parseItem(StatementTokens& statement) {
  SelectItem item;
  if (statement.tokens.acceptSymbol("*")) {
    item.allColumns = true;
    return item;
  }
  if (statement.tokens.atName() && statement.tokens.atSymbol(".", 1) &&
      statement.tokens.atSymbol("*", 2)) {
    item.allColumns = true;
    item.qualifier = statement.tokens.takeName();
    statement.tokens.take();
    statement.tokens.take();
    return item;
  }
  const bool isMissing = statement.tokens.atStatementEnd() || statement.tokens.atReservedWord() ||
                         statement.tokens.atSymbol(",");
  if (isMissing && !statement.tokens.atWord("NOT") && !statement.tokens.atWord("NULL")) {
    throw misspelledSelect();
  }
  item.value = statement.expressions.parse();
  if (statement.tokens.acceptWord("AS")) {
    if (!statement.tokens.atName()) throw statement.expressions.errorAfterExpression();
    item.alias = statement.tokens.takeName();
  }
  return item;
}

FromClause parseSource(StatementTokens& statement, int depth) {
  FromClause source;
  if (statement.tokens.acceptSymbol("(")) {
    if (depth >= deepestJoinGroup) throw statementError("Query is too complex.");
    std::vector<FromClause> group;
    group.push_back(parseFrom(statement, depth + 1));
    if (!statement.tokens.acceptSymbol(")")) throw syntaxErrorIn("FROM clause");
    source.first = std::move(group);
  } else {
    source.first = parseTable(statement, "FROM clause");
  }
  return source;
}

std::optional<JoinKind> acceptJoin(StatementTokens& statement) {
  if (statement.tokens.acceptSymbol(",")) return JoinKind::cross;
  JoinKind kind = JoinKind::inner;
  if (statement.tokens.acceptWord("LEFT")) {
    kind = JoinKind::left;
    statement.tokens.acceptWord("OUTER");
  } else if (statement.tokens.acceptWord("RIGHT")) {
    kind = JoinKind::right;
    statement.tokens.acceptWord("OUTER");
  } else if (!statement.tokens.acceptWord("INNER")) {
    return std::nullopt;
  }
  expectWord(statement, "JOIN", "JOIN operation");
  return kind;
}

FromClause parseFrom(StatementTokens& statement, int depth) {
  FromClause from = parseSource(statement, depth);
  while (const auto kind = acceptJoin(statement)) {
    Join join{*kind, parseSource(statement, depth), std::nullopt};
    if (*kind != JoinKind::cross) {
      expectWord(statement, "ON", "JOIN operation");
      join.condition = statement.expressions.parse();
    }
    from.joins.push_back(std::move(join));
  }
  return from;
}

OrderTerm parseOrderTerm(StatementTokens& statement) {
  if (statement.tokens.atStatementEnd() || statement.tokens.atReservedWord())
    throw syntaxErrorIn("ORDER BY clause");
  OrderTerm term{statement.expressions.parse(), false};
  term.descending = statement.tokens.acceptWord("DESC");
  if (!term.descending) statement.tokens.acceptWord("ASC");
  return term;
}

}  // namespace

void expectWord(StatementTokens& statement, std::string_view word, std::string_view place) {
  if (!statement.tokens.acceptWord(word)) throw syntaxErrorIn(place);
}

TableName parseTable(StatementTokens& statement, std::string_view place) {
  if (!statement.tokens.atName()) throw syntaxErrorIn(place);
  TableName table{statement.tokens.takeName(), {}};
  const bool hasAs = statement.tokens.acceptWord("AS");
  if (statement.tokens.atName()) {
    table.alias = statement.tokens.takeName();
  } else if (hasAs) {
    throw syntaxErrorIn(place);
  }
  return table;
}

std::optional<Expression> parseWhere(StatementTokens& statement) {
  if (!statement.tokens.acceptWord("WHERE")) return std::nullopt;
  Expression condition = statement.expressions.parse();
  statement.lastClause = {};
  return condition;
}

SelectStatement parseSelect(StatementTokens& statement) {
  SelectStatement select;
  select.distinct = statement.tokens.acceptWord("DISTINCT");
  select.top = parseTop(statement);
  do {
    select.items.push_back(parseItem(statement));
  } while (statement.tokens.acceptSymbol(","));
  statement.lastClause = {};
  if (statement.tokens.acceptWord("FROM")) {
    select.from = parseFrom(statement, 0);
    statement.lastClause = "FROM clause";
  }
  select.where = parseWhere(statement);
  if (statement.tokens.acceptWord("GROUP")) {
    expectWord(statement, "BY", "GROUP BY clause");
    do {
      select.groupBy.push_back(statement.expressions.parse());
    } while (statement.tokens.acceptSymbol(","));
    statement.lastClause = "GROUP BY clause";
  }
  if (statement.tokens.acceptWord("HAVING")) {
    select.having = statement.expressions.parse();
    statement.lastClause = {};
  }
  if (statement.tokens.acceptWord("ORDER")) {
    expectWord(statement, "BY", "ORDER BY clause");
    do {
      select.orderBy.push_back(parseOrderTerm(statement));
    } while (statement.tokens.acceptSymbol(","));
    statement.lastClause = "ORDER BY clause";
  }
  return select;
}

}  // namespace pelmora::sql
