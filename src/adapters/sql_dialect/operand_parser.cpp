// Operands: literals, names, calls and brackets.
// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/date_literal.h"
#include "adapters/sql_dialect/dialect_error.h"
#include "adapters/sql_dialect/expression_node.h"
#include "adapters/sql_dialect/expression_parser.h"
#include "base/text_case.h"
#include "base/run_time_error.h"

#include <array>
#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

namespace pelmora::sql {

Expression ExpressionParser::parsePrimary() {
  if (tokens_.acceptSymbol("(")) {
    const Nesting nesting(*this);
    Expression inner = parseDisjunction();
    expectClosingBracket();
    return inner;
  }
  switch (tokens_.peek().kind) {
    case TokenKind::number: return parseNumber();
    case TokenKind::text: return parseText();
    case TokenKind::date: return parseDate();
    default: break;
  }
  if (tokens_.acceptWord("NULL")) return {};
  if (tokens_.acceptWord("TRUE")) return node(ExpressionKind::boolean, "1");
  if (tokens_.acceptWord("FALSE")) return node(ExpressionKind::boolean, "0");
  if (tokens_.atName()) return parseName();
  throw missingOperand();
}

Expression ExpressionParser::parseName() {
  const bool isBracketed = tokens_.peek().kind == TokenKind::bracketedName;
  std::string name = tokens_.takeName();
  if (!isBracketed && tokens_.atSymbol("(")) return parseCall(std::move(name));
  Expression result = node(ExpressionKind::column, std::move(name));
  if (tokens_.atSymbol(".") || tokens_.atSymbol("!")) {
    tokens_.take();
    if (!tokens_.atName()) throw missingOperand();
    result.qualifier = std::exchange(result.text, tokens_.takeName());
  }
  return result;
}

Expression ExpressionParser::parseCall(std::string name) {
  constexpr std::array<std::string_view, 5> aggregates{"COUNT", "MIN", "MAX", "SUM", "AVG"};
  for (const std::string_view aggregate : aggregates) {
    if (!equalNames(name, aggregate)) continue;
    tokens_.take();
    const Nesting nesting(*this);
    Expression call = node(ExpressionKind::aggregate, std::string(aggregate));
    if (aggregate != "COUNT" || !tokens_.acceptSymbol("*"))
      call.operands.push_back(parseDisjunction());
    expectClosingBracket();
    return call;
  }
  throw statementError("Undefined function '" + name + "' in expression.");
}

Expression ExpressionParser::parseText() {
  const Token token = tokens_.take();
  Expression result = node(ExpressionKind::text, contents(token));
  result.position = token.offset + 1;
  return result;
}

Expression ExpressionParser::parseNumber() {
  const Token token = tokens_.take();
  const std::string_view digits = token.source;
  double value = 0;
  const auto [end, code] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  // Too small a number is out of range as well, but it is as good as 0.
  const bool isTooLarge = code == std::errc::result_out_of_range &&
                          digits.find_first_of("eE") != std::string_view::npos &&
                          digits[digits.find_first_of("eE") + 1] != '-';
  if (isTooLarge || !std::isfinite(value)) throw makeError(RunTimeError::overflow);
  if (code == std::errc::result_out_of_range) return node(ExpressionKind::number, "0.0");
  Expression result = node(ExpressionKind::number, std::string(digits.data(), end));
  if (result.text == digits) result.position = token.offset + 1;
  return result;
}

Expression ExpressionParser::parseDate() {
  const auto iso = isoDate(contents(tokens_.peek()));
  if (!iso) throw error("Syntax error in date");
  tokens_.take();
  return node(ExpressionKind::text, *iso);
}

}  // namespace pelmora::sql
