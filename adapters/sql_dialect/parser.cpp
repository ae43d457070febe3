// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/parser.h"

#include "adapters/sql_dialect/dialect_error.h"
#include "adapters/sql_dialect/expression_parser.h"
#include "adapters/sql_dialect/text_case.h"
#include "adapters/sql_dialect/token_stream.h"

#include <charconv>
#include <system_error>
#include <utility>

namespace pelmora::sql {

namespace {

constexpr int deepestJoinGroup = 50;

class StatementParser {
 public:
  explicit StatementParser(std::string_view text) : tokens_(text), expressions_(tokens_) {}

  Statement parse();

 private:
  Statement parseVerb();
  SelectStatement parseSelect();
  std::optional<std::int64_t> parseTop();
  SelectItem parseItem();
  FromClause parseFrom(int depth);
  FromClause parseSource(int depth);
  std::optional<JoinKind> acceptJoin();
  OrderTerm parseOrderTerm();
  InsertStatement parseInsert();
  std::vector<std::string> parseColumns();
  std::vector<Expression> parseValues();
  DeleteStatement parseDelete();
  UpdateStatement parseUpdate();
  TableName parseTable(std::string_view place);
  std::optional<Expression> parseWhere();
  void expectWord(std::string_view word, std::string_view place);

  TokenStream tokens_;
  ExpressionParser expressions_;
  std::string_view lastClause_;  // for an error behind the statement; empty: an expression
};

Statement StatementParser::parse() {
  Statement result = parseVerb();
  if (!tokens_.atStatementEnd()) {
    if (lastClause_.empty()) throw expressions_.errorAfterExpression();
    throw syntaxErrorIn(lastClause_);
  }
  tokens_.acceptSymbol(";");
  if (!tokens_.atEnd()) throw statementError("Characters found after end of SQL statement.");
  return result;
}

Statement StatementParser::parseVerb() {
  if (tokens_.acceptWord("SELECT")) return parseSelect();
  if (tokens_.acceptWord("INSERT")) return parseInsert();
  if (tokens_.acceptWord("DELETE")) return parseDelete();
  if (tokens_.acceptWord("UPDATE")) return parseUpdate();
  throw statementError(
      "Invalid SQL statement; expected 'DELETE', 'INSERT', 'SELECT', or 'UPDATE'.");
}

void StatementParser::expectWord(std::string_view word, std::string_view place) {
  if (!tokens_.acceptWord(word)) throw syntaxErrorIn(place);
}

SelectStatement StatementParser::parseSelect() {
  SelectStatement select;
  select.distinct = tokens_.acceptWord("DISTINCT");
  select.top = parseTop();
  do {
    select.items.push_back(parseItem());
  } while (tokens_.acceptSymbol(","));
  lastClause_ = {};
  if (tokens_.acceptWord("FROM")) {
    select.from = parseFrom(0);
    lastClause_ = "FROM clause";
  }
  select.where = parseWhere();
  if (tokens_.acceptWord("GROUP")) {
    expectWord("BY", "GROUP BY clause");
    do {
      select.groupBy.push_back(expressions_.parse());
    } while (tokens_.acceptSymbol(","));
    lastClause_ = "GROUP BY clause";
  }
  if (tokens_.acceptWord("HAVING")) {
    select.having = expressions_.parse();
    lastClause_ = {};
  }
  if (tokens_.acceptWord("ORDER")) {
    expectWord("BY", "ORDER BY clause");
    do {
      select.orderBy.push_back(parseOrderTerm());
    } while (tokens_.acceptSymbol(","));
    lastClause_ = "ORDER BY clause";
  }
  return select;
}

std::optional<std::int64_t> StatementParser::parseTop() {
  if (!tokens_.acceptWord("TOP")) return std::nullopt;
  const std::string_view digits = tokens_.peek().source;
  std::int64_t count = 0;
  const auto [end, code] = std::from_chars(digits.data(), digits.data() + digits.size(), count);
  if (tokens_.peek().kind != TokenKind::number || code != std::errc() ||
      end != digits.data() + digits.size()) {
    throw statementError(
        "The SELECT statement includes a reserved word or an argument name that is misspelled or "
        "missing, or the punctuation is incorrect.");
  }
  tokens_.take();
  return count;
}

SelectItem StatementParser::parseItem() {
  SelectItem item;
  if (tokens_.acceptSymbol("*")) {
    item.allColumns = true;
    return item;
  }
  if (tokens_.atName() && tokens_.atSymbol(".", 1) && tokens_.atSymbol("*", 2)) {
    item.allColumns = true;
    item.qualifier = tokens_.takeName();
    tokens_.take();
    tokens_.take();
    return item;
  }
  const bool isMissing =
      tokens_.atStatementEnd() || tokens_.atReservedWord() || tokens_.atSymbol(",");
  if (isMissing && !tokens_.atWord("NOT") && !tokens_.atWord("NULL")) {
    throw statementError(
        "The SELECT statement includes a reserved word or an argument name that is misspelled or "
        "missing, or the punctuation is incorrect.");
  }
  item.value = expressions_.parse();
  if (tokens_.acceptWord("AS")) {
    if (!tokens_.atName()) throw expressions_.errorAfterExpression();
    item.alias = tokens_.takeName();
  }
  return item;
}

TableName StatementParser::parseTable(std::string_view place) {
  if (!tokens_.atName()) throw syntaxErrorIn(place);
  TableName table{tokens_.takeName(), {}};
  const bool hasAs = tokens_.acceptWord("AS");
  if (tokens_.atName()) {
    table.alias = tokens_.takeName();
  } else if (hasAs) {
    throw syntaxErrorIn(place);
  }
  return table;
}

FromClause StatementParser::parseSource(int depth) {
  FromClause source;
  if (tokens_.acceptSymbol("(")) {
    if (depth >= deepestJoinGroup) throw statementError("Query is too complex.");
    std::vector<FromClause> group;
    group.push_back(parseFrom(depth + 1));
    if (!tokens_.acceptSymbol(")")) throw syntaxErrorIn("FROM clause");
    source.first = std::move(group);
  } else {
    source.first = parseTable("FROM clause");
  }
  return source;
}

std::optional<JoinKind> StatementParser::acceptJoin() {
  if (tokens_.acceptSymbol(",")) return JoinKind::cross;
  JoinKind kind = JoinKind::inner;
  if (tokens_.acceptWord("LEFT")) {
    kind = JoinKind::left;
    tokens_.acceptWord("OUTER");
  } else if (tokens_.acceptWord("RIGHT")) {
    kind = JoinKind::right;
    tokens_.acceptWord("OUTER");
  } else if (!tokens_.acceptWord("INNER")) {
    return std::nullopt;
  }
  expectWord("JOIN", "JOIN operation");
  return kind;
}

FromClause StatementParser::parseFrom(int depth) {
  FromClause from = parseSource(depth);
  while (const auto kind = acceptJoin()) {
    Join join{*kind, parseSource(depth), std::nullopt};
    if (*kind != JoinKind::cross) {
      expectWord("ON", "JOIN operation");
      join.condition = expressions_.parse();
    }
    from.joins.push_back(std::move(join));
  }
  return from;
}

std::optional<Expression> StatementParser::parseWhere() {
  if (!tokens_.acceptWord("WHERE")) return std::nullopt;
  Expression condition = expressions_.parse();
  lastClause_ = {};
  return condition;
}

OrderTerm StatementParser::parseOrderTerm() {
  if (tokens_.atStatementEnd() || tokens_.atReservedWord()) throw syntaxErrorIn("ORDER BY clause");
  OrderTerm term{expressions_.parse(), false};
  term.descending = tokens_.acceptWord("DESC");
  if (!term.descending) tokens_.acceptWord("ASC");
  return term;
}

InsertStatement StatementParser::parseInsert() {
  constexpr std::string_view place = "INSERT INTO statement";
  expectWord("INTO", place);
  if (!tokens_.atName()) throw syntaxErrorIn(place);
  InsertStatement insert;
  insert.table = tokens_.takeName();
  if (tokens_.atSymbol("(")) insert.columns = parseColumns();
  if (tokens_.acceptWord("IN")) {
    if (tokens_.peek().kind != TokenKind::text) throw syntaxErrorIn(place);
    insert.file = contents(tokens_.take());
  }
  if (tokens_.acceptWord("SELECT")) {
    insert.source = parseSelect();
  } else {
    expectWord("VALUES", place);
    insert.source = parseValues();
    lastClause_ = place;
  }
  return insert;
}

std::vector<std::string> StatementParser::parseColumns() {
  tokens_.take();
  std::vector<std::string> columns;
  do {
    if (!tokens_.atName()) throw syntaxErrorIn("INSERT INTO statement");
    columns.push_back(tokens_.takeName());
  } while (tokens_.acceptSymbol(","));
  if (!tokens_.acceptSymbol(")")) throw syntaxErrorIn("INSERT INTO statement");
  return columns;
}

std::vector<Expression> StatementParser::parseValues() {
  if (!tokens_.acceptSymbol("(")) throw syntaxErrorIn("INSERT INTO statement");
  std::vector<Expression> values;
  do {
    values.push_back(expressions_.parse());
  } while (tokens_.acceptSymbol(","));
  if (!tokens_.acceptSymbol(")")) throw syntaxErrorIn("INSERT INTO statement");
  return values;
}

DeleteStatement StatementParser::parseDelete() {
  constexpr std::string_view place = "DELETE statement";
  DeleteStatement result;
  std::string qualifier;
  if (!tokens_.acceptSymbol("*") && tokens_.atName()) {
    qualifier = tokens_.takeName();
    if (!tokens_.acceptSymbol(".") || !tokens_.acceptSymbol("*")) throw syntaxErrorIn(place);
  }
  expectWord("FROM", place);
  result.table = parseTable("FROM clause");
  if (!qualifier.empty() && !equalNames(qualifier, result.table.visibleName())) {
    throw statementError("Specify the table containing the records you want to delete.");
  }
  lastClause_ = "FROM clause";
  result.where = parseWhere();
  return result;
}

UpdateStatement StatementParser::parseUpdate() {
  constexpr std::string_view place = "UPDATE statement";
  UpdateStatement result;
  result.table = parseTable(place);
  expectWord("SET", place);
  do {
    if (!tokens_.atName()) throw syntaxErrorIn(place);
    Assignment assignment{tokens_.takeName(), {}};
    if (tokens_.acceptSymbol(".")) {
      if (!equalNames(assignment.column, result.table.visibleName()) || !tokens_.atName()) {
        throw syntaxErrorIn(place);
      }
      assignment.column = tokens_.takeName();
    }
    if (!tokens_.acceptSymbol("=")) throw syntaxErrorIn(place);
    assignment.value = expressions_.parse();
    result.assignments.push_back(std::move(assignment));
  } while (tokens_.acceptSymbol(","));
  lastClause_ = {};
  result.where = parseWhere();
  return result;
}

}  // namespace

Statement parseStatement(std::string_view text) { return StatementParser(text).parse(); }

}  // namespace pelmora::sql
