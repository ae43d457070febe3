// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/expression_parser.h"

#include "adapters/sql_dialect/dialect_error.h"
#include "adapters/sql_dialect/expression_node.h"

#include <array>
#include <utility>

namespace pelmora::sql {

Error ExpressionParser::error(std::string_view what) const {
  return expressionError(what, tokens_.expressionAt(start_));
}

Error ExpressionParser::missingOperand() const {
  const Token& token = tokens_.peek();
  if (token.kind == TokenKind::unclosed) {
    if (token.source.front() == '#') return error("Syntax error in date");
    if (token.source.front() == '[') return error("Missing ), ], or item");
    return error("Syntax error in string");
  }
  if (tokens_.atSymbol(",")) return error("Syntax error (comma)");
  return error("Syntax error (missing operator)");
}

void ExpressionParser::expectClosingBracket() {
  if (tokens_.acceptSymbol(")")) return;
  if (tokens_.atStatementEnd()) throw error("Missing ), ], or item");
  throw missingOperand();
}

Expression ExpressionParser::parse() {
  start_ = tokens_.position();
  depth_ = 0;
  Expression result = parseDisjunction();
  const bool mayEnd = tokens_.atStatementEnd() || tokens_.atSymbol(",") || tokens_.atSymbol(")") ||
                      tokens_.atReservedWord();
  if (!mayEnd) throw missingOperand();
  return result;
}

Error ExpressionParser::errorAfterExpression() const {
  if (tokens_.atSymbol(")")) return error("Extra )");
  return missingOperand();
}

Expression ExpressionParser::parseDisjunction() {
  Expression first = parseConjunction();
  if (!tokens_.atWord("OR")) return first;
  Expression result = node(ExpressionKind::disjunction, {}, list(std::move(first)));
  while (tokens_.acceptWord("OR")) result.operands.push_back(parseConjunction());
  return result;
}

Expression ExpressionParser::parseConjunction() {
  Expression first = parseNegation();
  if (!tokens_.atWord("AND")) return first;
  Expression result = node(ExpressionKind::conjunction, {}, list(std::move(first)));
  while (tokens_.acceptWord("AND")) result.operands.push_back(parseNegation());
  return result;
}

Expression ExpressionParser::parseNegation() {
  bool negated = false;
  while (tokens_.acceptWord("NOT")) negated = !negated;
  Expression value = parseComparison();
  return negated ? node(ExpressionKind::negation, {}, list(std::move(value))) : std::move(value);
}

Expression ExpressionParser::parseComparison() {
  constexpr std::array<std::string_view, 6> operators{"=", "<>", "<", ">", "<=", ">="};
  Expression result = parseConcatenation();
  const int depth = depth_;
  for (bool found = true; found;) {
    found = false;
    if (tokens_.atWord("IS")) {
      result = parseIsNull(std::move(result));
      found = true;
    }
    const bool negated = tokens_.atWord("NOT");
    const std::size_t ahead = negated ? 1 : 0;
    if (tokens_.atWord("LIKE", ahead) || tokens_.atWord("BETWEEN", ahead) ||
        tokens_.atWord("IN", ahead)) {
      if (negated) tokens_.take();
      result = parsePredicate(std::move(result), negated);
      found = true;
    }
    for (const std::string_view symbol : operators) {
      if (!tokens_.acceptSymbol(symbol)) continue;
      result = node(ExpressionKind::comparison, std::string(symbol), list(std::move(result)));
      result.operands.push_back(parseConcatenation());
      found = true;
    }
    // Each comparison of a comparison makes the tree one level deeper.
    if (found && ++depth_ > deepestNesting) throw error("Expression too complex");
  }
  depth_ = depth;
  return result;
}

Expression ExpressionParser::parseIsNull(Expression value) {
  tokens_.take();
  const bool negated = tokens_.acceptWord("NOT");
  if (!tokens_.acceptWord("NULL")) throw missingOperand();
  Expression result = node(ExpressionKind::isNull, {}, list(std::move(value)));
  result.negated = negated;
  return result;
}

Expression ExpressionParser::parsePredicate(Expression value, bool negated) {
  Expression result = node(ExpressionKind::like, {}, list(std::move(value)));
  result.negated = negated;
  if (tokens_.acceptWord("LIKE")) {
    result.operands.push_back(parseConcatenation());
  } else if (tokens_.acceptWord("BETWEEN")) {
    result.kind = ExpressionKind::between;
    result.operands.push_back(parseConcatenation());
    if (!tokens_.acceptWord("AND")) throw error("Between operator without And");
    result.operands.push_back(parseConcatenation());
  } else {
    tokens_.take();
    result.kind = ExpressionKind::in;
    if (!tokens_.acceptSymbol("(")) throw missingOperand();
    const Nesting nesting(*this);
    do {
      result.operands.push_back(parseConcatenation());
    } while (tokens_.acceptSymbol(","));
    expectClosingBracket();
  }
  return result;
}

Expression ExpressionParser::parseConcatenation() {
  Expression first = parseSum();
  if (!tokens_.atSymbol("&")) return first;
  Expression result = node(ExpressionKind::arithmetic, {}, list(std::move(first)));
  while (tokens_.acceptSymbol("&")) {
    result.text += '&';
    result.operands.push_back(parseSum());
  }
  return result;
}

Expression ExpressionParser::parseSum() {
  Expression first = parseProduct();
  if (!tokens_.atSymbol("+") && !tokens_.atSymbol("-")) return first;
  Expression result = node(ExpressionKind::arithmetic, {}, list(std::move(first)));
  while (tokens_.atSymbol("+") || tokens_.atSymbol("-")) {
    result.text += tokens_.take().source;
    result.operands.push_back(parseProduct());
  }
  return result;
}

Expression ExpressionParser::parseProduct() {
  Expression first = parseSigned();
  if (!tokens_.atSymbol("*") && !tokens_.atSymbol("/")) return first;
  Expression result = node(ExpressionKind::arithmetic, {}, list(std::move(first)));
  while (tokens_.atSymbol("*") || tokens_.atSymbol("/")) {
    result.text += tokens_.take().source;
    result.operands.push_back(parseSigned());
  }
  return result;
}

Expression ExpressionParser::parseSigned() {
  bool negative = false;
  while (tokens_.atSymbol("+") || tokens_.atSymbol("-")) {
    if (tokens_.take().source == "-") negative = !negative;
  }
  Expression value = parsePower();
  if (!negative) return value;
  if (value.kind == ExpressionKind::number && value.text.front() != '-') {
    value.text.insert(0, "-");
    value.position = 0;
    return value;
  }
  return node(ExpressionKind::negative, {}, list(std::move(value)));
}

Expression ExpressionParser::parsePower() {
  Expression first = parsePrimary();
  if (!tokens_.atSymbol("^")) return first;
  Expression result = node(ExpressionKind::arithmetic, {}, list(std::move(first)));
  while (tokens_.acceptSymbol("^")) {
    result.text += '^';
    bool negative = false;
    while (tokens_.atSymbol("+") || tokens_.atSymbol("-")) {
      if (tokens_.take().source == "-") negative = !negative;
    }
    Expression exponent = parsePrimary();
    result.operands.push_back(negative
                                  ? node(ExpressionKind::negative, {}, list(std::move(exponent)))
                                  : std::move(exponent));
  }
  return result;
}

}  // namespace pelmora::sql
