// Conditions: comparisons, and what joins them.
// SPDX-License-Identifier: MIT
#include "adapters/postgresql/postgres_expression.h"
#include "adapters/postgresql/statement_names.h"
#include "adapters/sql_dialect/dialect_error.h"
#include "adapters/sql_dialect/literal_number.h"

#include <algorithm>
#include <optional>

namespace pelmora::postgres {

using sql::Expression;
using sql::ExpressionKind;

namespace {

bool isLiteral(const Expression& expression) {
  return expression.kind == ExpressionKind::number || expression.kind == ExpressionKind::text;
}

bool isNumber(ValueKind kind) {
  return kind == ValueKind::whole || kind == ValueKind::real || kind == ValueKind::truth;
}

std::string_view mirrored(std::string_view op) {
  if (op == "<") return ">";
  if (op == ">") return "<";
  if (op == "<=") return ">=";
  if (op == ">=") return "<=";
  return op;
}

std::string small(const TypedSql& value) {
  return "pelmora_small(" + value.sql + ") COLLATE \"C\"";
}

// Numbers come before texts; a text that reads as a number counts as that number where the other
// side is a column of numbers.
std::string mixed(const TypedSql& left, std::string_view op, const TypedSql& right) {
  const auto side = [](const TypedSql& value, const TypedSql& other) {
    return isNumber(other.kind) ? "pelmora_loose(" + jsonOf(value) + ")" : jsonOf(value);
  };
  return "(pelmora_compare(" + side(left, right) + ", " + side(right, left) + ") " +
         std::string(op) + " 0)";
}

}  // namespace

std::string PostgresExpression::condition(const Expression& expression) const {
  const auto& operands = expression.operands;
  switch (expression.kind) {
    case ExpressionKind::boolean: return expression.text == "0" ? "FALSE" : "TRUE";
    case ExpressionKind::conjunction: return chain(expression, " AND ");
    case ExpressionKind::disjunction: return chain(expression, " OR ");
    case ExpressionKind::negation: return "(NOT " + condition(operands[0]) + ")";
    case ExpressionKind::comparison: return comparison(operands[0], expression.text, operands[1]);
    case ExpressionKind::isNull:
      return "(" + value(operands[0]).sql + (expression.negated ? " IS NOT NULL)" : " IS NULL)");
    case ExpressionKind::like:
      return std::string(expression.negated ? "(NOT " : "(") + "pelmora_like(" +
             textOf(value(operands[0])) + ", " + textOf(value(operands[1])) + "))";
    case ExpressionKind::between: return between(expression);
    case ExpressionKind::in: return in(expression);
    default: break;
  }
  const TypedSql result = value(expression);
  if (result.kind == ValueKind::null) return "NULL::boolean";
  if (isNumber(result.kind)) return "(" + result.sql + " <> 0)";
  return "pelmora_truth(" + jsonOf(result) + ")";
}

std::string PostgresExpression::chain(const Expression& expression, std::string_view joint) const {
  std::string result = "(";
  for (const Expression& operandOfChain : expression.operands) {
    if (result.size() > 1) result += joint;
    result += condition(operandOfChain);
  }
  return result + ")";
}

std::string PostgresExpression::comparison(const Expression& left, std::string_view op,
                                           const Expression& right) const {
  if (isLiteral(right)) return comparisonWithLiteral(left, op, right);
  if (isLiteral(left)) return comparisonWithLiteral(right, mirrored(op), left);
  const TypedSql a = value(left), b = value(right);
  if (a.kind == ValueKind::null || b.kind == ValueKind::null) return "NULL::boolean";
  if (isNumber(a.kind) && isNumber(b.kind))
    return "(" + a.sql + " " + std::string(op) + " " + b.sql + ")";
  if (a.kind == ValueKind::text && b.kind == ValueKind::text)
    return "(" + small(a) + " " + std::string(op) + " " + small(b) + ")";
  return mixed(a, op, b);
}

// An index on the column stays usable: a number is compared as it is, a text by its small letters.
std::string PostgresExpression::comparisonWithLiteral(const Expression& left, std::string_view op,
                                                      const Expression& literal) const {
  const TypedSql side = value(left);
  const std::string relation = " " + std::string(op) + " ";
  const bool isEquality = op == "=" || op == "<>";
  const bool isColumn = left.kind == ExpressionKind::column;
  const bool isNumberLiteral = literal.kind == ExpressionKind::number;
  const auto wholeText = sql::wholeNumberText(literal.text);
  if (side.kind == ValueKind::null) return "NULL::boolean";

  if (side.kind == ValueKind::any && isColumn && isEquality && wholeText &&
      (isNumberLiteral || *wholeText == literal.text)) {
    // The column may hold the number as a number or as text.
    return "(" + side.sql + (op == "=" ? " IN (" : " NOT IN (") + quotedText(*wholeText) +
           "::jsonb, " + quotedText('"' + *wholeText + '"') + "::jsonb))";
  }
  if (isNumberLiteral) {
    if (isNumber(side.kind))
      return "(" + side.sql + relation + numberLiteral(literal.text).sql + ")";
    if (side.kind != ValueKind::text || !isColumn)
      return "(pelmora_compare(" + jsonOf(side) + ", " + jsonOf(numberLiteral(literal.text)) + ")" +
             relation + "0)";
    if (!isEquality) throw sql::typeMismatch();
    return "(" + small(side) + relation +
           small({quotedText(wholeText ? *wholeText : literal.text) + "::text", ValueKind::text}) +
           ")";
  }
  if (isNumber(side.kind)) {
    if (sql::numberOf(literal.text))
      return "(" + side.sql + relation + numberLiteral(literal.text).sql + ")";
    if (!isEquality) throw sql::typeMismatch();
    // No number is such a text.
    return "(CASE WHEN " + side.sql + " IS NOT NULL THEN " + (op == "=" ? "FALSE" : "TRUE") +
           " END)";
  }
  const TypedSql words = value(literal);
  if (side.kind == ValueKind::any)
    return "(pelmora_compare(" + side.sql + ", " + jsonOf(words) + ")" + relation + "0)";
  return "(" + small(side) + relation + small(words) + ")";
}

std::string PostgresExpression::between(const Expression& expression) const {
  const auto& operands = expression.operands;
  return std::string(expression.negated ? "(NOT " : "(") + "(" +
         comparison(operands[0], ">=", operands[1]) + " AND " +
         comparison(operands[0], "<=", operands[2]) + "))";
}

// A list of whole numbers is one condition to the server, however long it is; it would plan and
// look up each number of a disjunction by itself.
std::string PostgresExpression::inWholeNumbers(const Expression& expression) const {
  const auto& operands = expression.operands;
  const bool areWhole = std::all_of(operands.begin() + 1, operands.end(), [](const auto& operand) {
    return operand.kind == ExpressionKind::number &&
           numberLiteral(operand.text).kind == ValueKind::whole;
  });
  if (!areWhole) return {};
  const TypedSql side = value(operands[0]);
  if (!isNumber(side.kind)) return {};
  std::string list;
  for (std::size_t i = 1; i < operands.size(); ++i)
    list += (i == 1 ? "" : ", ") + numberLiteral(operands[i].text).sql;
  return "(" + side.sql + (expression.negated ? " NOT IN (" : " IN (") + list + "))";
}

std::string PostgresExpression::in(const Expression& expression) const {
  std::string list = inWholeNumbers(expression);
  if (!list.empty()) return list;
  for (std::size_t i = 1; i < expression.operands.size(); ++i) {
    list +=
        (i == 1 ? "" : " OR ") + comparison(expression.operands[0], "=", expression.operands[i]);
  }
  return (expression.negated ? "(NOT (" : "((") + list + "))";
}

}  // namespace pelmora::postgres
