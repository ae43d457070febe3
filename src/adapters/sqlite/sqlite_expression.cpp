// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_expression.h"

#include "adapters/sql_dialect/dialect_error.h"
#include "adapters/sql_dialect/literal_number.h"
#include "base/text_case.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace pelmora::sqlite {

using namespace sql;

namespace {

// SQLite lets a function have 127 arguments; some builds have 100.
constexpr int mostArithmeticValues = 99;

std::string quoted(std::string_view text, char quote) {
  std::string result(1, quote);
  for (const char c : text) {
    if (c == quote) result += quote;
    result += c;
  }
  return result + quote;
}

bool isLiteral(const Expression& expression) {
  return expression.kind == ExpressionKind::number || expression.kind == ExpressionKind::text;
}

// What stands for the literal: a parameter, or else `written`.
std::string parameterOr(LiteralParameters* parameters, const Expression& literal,
                        LiteralParameters::Form form, std::string written) {
  if (parameters == nullptr) return written;
  return parameters->add(literal, form).value_or(std::move(written));
}

std::string_view mirrored(std::string_view op) {
  if (op == "<") return ">";
  if (op == ">") return "<";
  if (op == "<=") return ">=";
  if (op == ">=") return "<=";
  return op;
}

}  // namespace

std::string quotedName(std::string_view name) { return quoted(name, '"'); }
std::string quotedText(std::string_view text) { return quoted(text, '\''); }

SqliteExpression::Kind SqliteExpression::kindOf(const Expression& expression) const {
  switch (expression.kind) {
    case ExpressionKind::null: return Kind::null;
    case ExpressionKind::number:
    case ExpressionKind::negative: return Kind::number;
    case ExpressionKind::text: return Kind::text;
    case ExpressionKind::column:
      switch (scope_.resolve(expression).column->kind) {
        case ColumnKind::number: return Kind::number;
        case ColumnKind::text: return Kind::text;
        case ColumnKind::asStored: break;
      }
      return Kind::any;
    case ExpressionKind::arithmetic:
      if (expression.text.front() == '&') return Kind::text;
      // Two texts with a plus between them are joined.
      return expression.text.find_first_not_of('+') == std::string::npos ? Kind::any : Kind::number;
    case ExpressionKind::aggregate: return expression.text == "COUNT" ? Kind::number : Kind::any;
    default: return Kind::truth;
  }
}

std::string SqliteExpression::value(const Expression& expression) const {
  switch (expression.kind) {
    case ExpressionKind::null: return "NULL";
    case ExpressionKind::number: return expression.text;
    case ExpressionKind::text: return quotedText(expression.text);
    case ExpressionKind::column: return column(expression);
    case ExpressionKind::negative:
    case ExpressionKind::arithmetic: return arithmetic(expression);
    case ExpressionKind::aggregate: return aggregate(expression);
    default: return "-(" + condition(expression) + ")";
  }
}

std::string SqliteExpression::condition(const Expression& expression) const {
  const auto& operands = expression.operands;
  switch (expression.kind) {
    case ExpressionKind::boolean: return expression.text;
    case ExpressionKind::conjunction: return chain(expression, " AND ");
    case ExpressionKind::disjunction: return chain(expression, " OR ");
    case ExpressionKind::negation: return "NOT (" + condition(operands[0]) + ")";
    case ExpressionKind::comparison: return comparison(operands[0], expression.text, operands[1]);
    case ExpressionKind::isNull:
      return value(operands[0]) + (expression.negated ? " IS NOT NULL" : " IS NULL");
    case ExpressionKind::like:
      return std::string(expression.negated ? "NOT " : "") + "dialect_like(" + value(operands[0]) +
             ", " + value(operands[1]) + ")";
    case ExpressionKind::between: return between(expression);
    case ExpressionKind::in: return in(expression);
    default: return value(expression);
  }
}

std::string SqliteExpression::deliveredValue(const Expression& expression) const {
  if (expression.kind != ExpressionKind::number) return value(expression);
  return parameterOr(parameters_, expression, LiteralParameters::Form::number, expression.text);
}

std::string SqliteExpression::sortValue(const Expression& expression) const {
  const Kind kind = kindOf(expression);
  const bool mayBeText = kind == Kind::any || kind == Kind::text;
  return value(expression) + (mayBeText ? " COLLATE DIALECT_TEXT" : "");
}

std::string SqliteExpression::column(const Expression& expression) const {
  const ResolvedColumn found = scope_.resolve(expression);
  return quotedName(found.table->name) + "." + quotedName(found.column->name);
}

std::string SqliteExpression::arithmetic(const Expression& expression) const {
  std::string program;
  std::string values;
  int count = 0;
  compile(expression, program, values, count);
  if (count > mostArithmeticValues) throw statementError("Expression too complex.");
  return "dialect_arithmetic('" + program + "'" + values + ")";
}

void SqliteExpression::compile(const Expression& expression, std::string& program,
                               std::string& values, int& count) const {
  if (expression.kind == ExpressionKind::negative) {
    compile(expression.operands[0], program, values, count);
    program += 'n';
  } else if (expression.kind == ExpressionKind::arithmetic) {
    compile(expression.operands[0], program, values, count);
    for (std::size_t i = 1; i < expression.operands.size(); ++i) {
      compile(expression.operands[i], program, values, count);
      program += expression.text[i - 1];
    }
  } else {
    program += 'v';
    values += ", " + value(expression);
    ++count;
  }
}

std::string SqliteExpression::aggregate(const Expression& expression) const {
  if (expression.operands.empty()) return "COUNT(*)";
  const Expression& operand = expression.operands[0];
  const std::string& name = expression.text;
  if (name == "MIN" || name == "MAX") return name + "(" + sortValue(operand) + ")";
  // SQLite would take text that is not a number for 0.
  const bool isSum = name == "SUM" || name == "AVG";
  if (isSum && kindOf(operand) != Kind::truth)
    return name + "(dialect_arithmetic('v', " + value(operand) + "))";
  return name + "(" + value(operand) + ")";
}

std::string SqliteExpression::chain(const Expression& expression, std::string_view joint) const {
  std::string result = "(";
  for (const Expression& operand : expression.operands) {
    if (result.size() > 1) result += joint;
    result += condition(operand);
  }
  return result + ")";
}

std::string SqliteExpression::comparison(const Expression& left, std::string_view op,
                                         const Expression& right) const {
  if (isLiteral(right)) return comparisonWithLiteral(left, op, right);
  if (isLiteral(left)) return comparisonWithLiteral(right, mirrored(op), left);
  const auto maybeText = [this](const Expression& side) {
    const Kind kind = kindOf(side);
    return kind == Kind::any || kind == Kind::text;
  };
  const bool compareAsText = maybeText(left) && maybeText(right);
  return value(left) + " " + std::string(op) + " " + value(right) +
         (compareAsText ? " COLLATE DIALECT_TEXT" : "");
}

// An index on the column stays usable: no function is applied to the column, and texts that hold
// nothing but ASCII are compared by SQLite's own NOCASE, which the indexes of a curve database
// have.
std::string SqliteExpression::comparisonWithLiteral(const Expression& left, std::string_view op,
                                                    const Expression& literal) const {
  const Kind kind = kindOf(left);
  const std::string start = value(left) + " " + std::string(op) + " ";
  const bool isEquality = op == "=" || op == "<>";
  const bool isNumber = literal.kind == ExpressionKind::number;
  const auto whole = wholeNumberText(literal.text);
  const bool isColumn = left.kind == ExpressionKind::column;
  LiteralParameters* const open = isColumn ? parameters_ : nullptr;
  const auto asNumber = [&](const std::string& text) {
    return parameterOr(open, literal, LiteralParameters::Form::number, text);
  };
  const auto asText = [&](const std::string& text) {
    return parameterOr(open, literal, LiteralParameters::Form::text, quotedText(text));
  };

  if (kind == Kind::any && isColumn && isEquality && whole &&
      (isNumber || *whole == literal.text)) {
    // The column may hold the number as a number or as text.
    const std::string number = asNumber(*whole);
    return value(left) + (op == "=" ? " IN (" : " NOT IN (") + number + ", " + asText(*whole) + ")";
  }
  if (isNumber) {
    if (kind != Kind::text || !isColumn) return start + asNumber(literal.text);
    if (!isEquality) throw typeMismatch();
    return start + asText(whole ? *whole : literal.text);
  }
  if (kind == Kind::number) {
    if (numberOf(literal.text)) return start + asNumber(literal.text);
    if (!isEquality) throw typeMismatch();
    return start + asText(literal.text);
  }
  return start + asText(literal.text) +
         (isAscii(literal.text) ? " COLLATE NOCASE" : " COLLATE DIALECT_TEXT");
}

std::string SqliteExpression::between(const Expression& expression) const {
  const auto& operands = expression.operands;
  return std::string(expression.negated ? "NOT " : "") + "(" +
         comparison(operands[0], ">=", operands[1]) + " AND " +
         comparison(operands[0], "<=", operands[2]) + ")";
}

std::string SqliteExpression::numberItem(const Expression& left, const Expression& item) const {
  LiteralParameters* const open = left.kind == ExpressionKind::column ? parameters_ : nullptr;
  return parameterOr(open, item, LiteralParameters::Form::number, item.text);
}

std::string SqliteExpression::in(const Expression& expression) const {
  const Expression& left = expression.operands[0];
  const bool allNumbers =
      std::all_of(expression.operands.begin() + 1, expression.operands.end(),
                  [](const Expression& item) { return item.kind == ExpressionKind::number; });
  const bool isPlainList = allNumbers && kindOf(left) == Kind::number;
  std::string list;
  for (std::size_t i = 1; i < expression.operands.size(); ++i) {
    const Expression& item = expression.operands[i];
    if (i > 1) list += isPlainList ? ", " : " OR ";
    list += isPlainList ? numberItem(left, item) : comparison(left, "=", item);
  }
  return (expression.negated ? "NOT (" : "(") +
         (isPlainList ? value(left) + " IN (" + list + ")" : list) + ")";
}

}  // namespace pelmora::sqlite
