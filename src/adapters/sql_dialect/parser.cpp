// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/parser.h"

#include "adapters/sql_dialect/dialect_error.h"
#include "adapters/sql_dialect/select_parser.h"
#include "base/text_case.h"

#include <utility>

namespace pelmora::sql {

namespace {

std::vector<std::string> parseColumns(StatementTokens& statement) {
  statement.tokens.take();
  std::vector<std::string> columns;
  do {
    if (!statement.tokens.atName()) throw syntaxErrorIn("INSERT INTO statement");
    columns.push_back(statement.tokens.takeName());
  } while (statement.tokens.acceptSymbol(","));
  if (!statement.tokens.acceptSymbol(")")) throw syntaxErrorIn("INSERT INTO statement");
  return columns;
}

std::vector<Expression> parseValues(StatementTokens& statement) {
  if (!statement.tokens.acceptSymbol("(")) throw syntaxErrorIn("INSERT INTO statement");
  std::vector<Expression> values;
  do {
    values.push_back(statement.expressions.parse());
  } while (statement.tokens.acceptSymbol(","));
  if (!statement.tokens.acceptSymbol(")")) throw syntaxErrorIn("INSERT INTO statement");
  return values;
}

InsertStatement parseInsert(StatementTokens& statement) {
  constexpr std::string_view place = "INSERT INTO statement";
  expectWord(statement, "INTO", place);
  if (!statement.tokens.atName()) throw syntaxErrorIn(place);
  InsertStatement insert;
  insert.table = statement.tokens.takeName();
  if (statement.tokens.atSymbol("(")) insert.columns = parseColumns(statement);
  if (statement.tokens.acceptWord("IN")) {
    if (statement.tokens.peek().kind != TokenKind::text) throw syntaxErrorIn(place);
    insert.file = contents(statement.tokens.take());
  }
  if (statement.tokens.acceptWord("SELECT")) {
    insert.source = parseSelect(statement);
  } else {
    expectWord(statement, "VALUES", place);
    insert.source = parseValues(statement);
    statement.lastClause = place;
  }
  return insert;
}

DeleteStatement parseDelete(StatementTokens& statement) {
  constexpr std::string_view place = "DELETE statement";
  DeleteStatement result;
  std::string qualifier;
  if (!statement.tokens.acceptSymbol("*") && statement.tokens.atName()) {
    qualifier = statement.tokens.takeName();
    if (!statement.tokens.acceptSymbol(".") || !statement.tokens.acceptSymbol("*"))
      throw syntaxErrorIn(place);
  }
  expectWord(statement, "FROM", place);
  result.table = parseTable(statement, "FROM clause");
  if (!qualifier.empty() && !equalNames(qualifier, result.table.visibleName())) {
    throw statementError("Specify the table containing the records you want to delete.");
  }
  statement.lastClause = "FROM clause";
  result.where = parseWhere(statement);
  return result;
}

UpdateStatement parseUpdate(StatementTokens& statement) {
  constexpr std::string_view place = "UPDATE statement";
  UpdateStatement result;
  result.table = parseTable(statement, place);
  expectWord(statement, "SET", place);
  do {
    if (!statement.tokens.atName()) throw syntaxErrorIn(place);
    Assignment assignment{statement.tokens.takeName(), {}};
    if (statement.tokens.acceptSymbol(".")) {
      if (!equalNames(assignment.column, result.table.visibleName()) ||
          !statement.tokens.atName()) {
        throw syntaxErrorIn(place);
      }
      assignment.column = statement.tokens.takeName();
    }
    if (!statement.tokens.acceptSymbol("=")) throw syntaxErrorIn(place);
    assignment.value = statement.expressions.parse();
    result.assignments.push_back(std::move(assignment));
  } while (statement.tokens.acceptSymbol(","));
  statement.lastClause = {};
  result.where = parseWhere(statement);
  return result;
}

Statement parseVerb(StatementTokens& statement) {
  if (statement.tokens.acceptWord("SELECT")) return parseSelect(statement);
  if (statement.tokens.acceptWord("INSERT")) return parseInsert(statement);
  if (statement.tokens.acceptWord("DELETE")) return parseDelete(statement);
  if (statement.tokens.acceptWord("UPDATE")) return parseUpdate(statement);
  throw statementError(
      "Invalid SQL statement; expected 'DELETE', 'INSERT', 'SELECT', or 'UPDATE'.");
}

}  // namespace

Statement parseStatement(std::string_view text) {
  StatementTokens statement(text);
  Statement result = parseVerb(statement);
  if (!statement.tokens.atStatementEnd()) {
    if (statement.lastClause.empty()) throw statement.expressions.errorAfterExpression();
    throw syntaxErrorIn(statement.lastClause);
  }
  statement.tokens.acceptSymbol(";");
  if (!statement.tokens.atEnd())
    throw statementError("Characters found after end of SQL statement.");
  return result;
}

}  // namespace pelmora::sql
