// SELECT statements, and the clauses that other statements share with them.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/expression_parser.h"
#include "adapters/sql_dialect/syntax_tree.h"
#include "adapters/sql_dialect/token_stream.h"

#include <optional>
#include <string_view>

namespace pelmora::sql {

// The statement that is being read.
struct StatementTokens {
  explicit StatementTokens(std::string_view text) : tokens(text), expressions(tokens) {}

  TokenStream tokens;
  ExpressionParser expressions;
  // Where an error behind the last clause is said to be; empty: in its expression.
  std::string_view lastClause;
};

// Errors of all of these: statement errors.

// The rest of a SELECT whose first word has been taken.
[[nodiscard]] SelectStatement parseSelect(StatementTokens& statement);
// A table's name with or without an alias; `place` is where an error is said to be.
[[nodiscard]] TableName parseTable(StatementTokens& statement, std::string_view place);
[[nodiscard]] std::optional<Expression> parseWhere(StatementTokens& statement);
void expectWord(StatementTokens& statement, std::string_view word, std::string_view place);

}  // namespace pelmora::sql
