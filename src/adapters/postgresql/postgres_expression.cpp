// SPDX-License-Identifier: MIT
#include "adapters/postgresql/postgres_expression.h"

#include "adapters/postgresql/statement_names.h"
#include "adapters/sql_dialect/dialect_error.h"
#include "adapters/sql_dialect/literal_number.h"

#include <charconv>
#include <cstdint>
#include <system_error>

namespace pelmora::postgres {

using sql::ColumnKind;
using sql::Expression;
using sql::ExpressionKind;

namespace {

bool isWholeLiteral(std::string_view literal) {
  std::int64_t value = 0;
  const auto [end, code] = std::from_chars(literal.data(), literal.data() + literal.size(), value);
  return code == std::errc() && end == literal.data() + literal.size();
}

std::string realOf(const TypedSql& number) {
  return number.kind == ValueKind::real ? number.sql : number.sql + "::double precision";
}

TypedSql wholeResult(char op, const std::string& left, const std::string& right) {
  return {std::string("pelmora_whole_result('") + op + "', " + left + ", " + right + ")",
          ValueKind::whole};
}

TypedSql combined(const TypedSql& left, char op, const TypedSql& right) {
  if (op == '&')
    return {"pelmora_joined(" + textOf(left) + ", " + textOf(right) + ")", ValueKind::text};
  const auto mayBeText = [](const TypedSql& value) {
    return value.kind == ValueKind::text || value.kind == ValueKind::any;
  };
  if (left.kind == ValueKind::null || right.kind == ValueKind::null)
    return {"NULL::double precision", ValueKind::real};
  if (op == '+' && left.kind == ValueKind::text && right.kind == ValueKind::text)
    return {"(" + left.sql + " || " + right.sql + ")", ValueKind::text};
  if (op == '+' && mayBeText(left) && mayBeText(right))
    return {"pelmora_plus(" + jsonOf(left) + ", " + jsonOf(right) + ")", ValueKind::any};
  const TypedSql a = numberOf(left);
  const TypedSql b = numberOf(right);
  const bool areWhole = a.kind == ValueKind::whole && b.kind == ValueKind::whole;
  if (areWhole && op != '/' && op != '^') return wholeResult(op, a.sql, b.sql);
  switch (op) {
    case '*': return {"pelmora_times(" + realOf(a) + ", " + realOf(b) + ")", ValueKind::real};
    case '/': return {"pelmora_over(" + realOf(a) + ", " + realOf(b) + ")", ValueKind::real};
    case '^': return {"pelmora_power(" + realOf(a) + ", " + realOf(b) + ")", ValueKind::real};
    default: return {"(" + realOf(a) + " " + op + " " + realOf(b) + ")", ValueKind::real};
  }
}

}  // namespace

TypedSql numberLiteral(std::string_view literal) {
  if (isWholeLiteral(literal)) return {quotedText(literal) + "::bigint", ValueKind::whole};
  return {quotedText(literal) + "::double precision", ValueKind::real};
}

std::string jsonOf(const TypedSql& value) {
  switch (value.kind) {
    case ValueKind::null: return "NULL::jsonb";
    case ValueKind::any: return value.sql;
    case ValueKind::real: return "pelmora_json(" + value.sql + ")";
    default: return "to_jsonb(" + value.sql + ")";
  }
}

std::string textOf(const TypedSql& value) {
  switch (value.kind) {
    case ValueKind::null: return "NULL::text";
    case ValueKind::text: return value.sql;
    case ValueKind::real:
    case ValueKind::any: return "pelmora_text(" + value.sql + ")";
    default: return "(" + value.sql + ")::text";
  }
}

TypedSql numberOf(const TypedSql& value) {
  switch (value.kind) {
    case ValueKind::null: return {"NULL::double precision", ValueKind::real};
    case ValueKind::truth: return {value.sql, ValueKind::whole};
    case ValueKind::text:
    case ValueKind::any: return {"pelmora_number(" + value.sql + ")", ValueKind::real};
    default: return value;
  }
}

TypedSql PostgresExpression::value(const Expression& expression) const {
  switch (expression.kind) {
    case ExpressionKind::null: return {"NULL::text", ValueKind::null};
    case ExpressionKind::number: return numberLiteral(expression.text);
    case ExpressionKind::text: return {quotedText(expression.text) + "::text", ValueKind::text};
    case ExpressionKind::column: return column(expression);
    case ExpressionKind::negative: return negative(expression);
    case ExpressionKind::arithmetic: return arithmetic(expression);
    case ExpressionKind::aggregate: return aggregate(expression);
    default: return {"(-(" + condition(expression) + ")::integer)", ValueKind::truth};
  }
}

TypedSql PostgresExpression::plainColumn(const Expression& expression) const {
  const sql::ResolvedColumn found = scope_.resolve(expression);
  const std::string name = quotedName(found.table->name) + "." + quotedName(found.column->name);
  switch (found.column->kind) {
    case ColumnKind::number:
      return {name, found.column->isWhole ? ValueKind::whole : ValueKind::real};
    case ColumnKind::text: return {name, ValueKind::text};
    case ColumnKind::asStored: break;
  }
  return {name, ValueKind::any};
}

// Texts that differ in case alone are one group: it delivers the first of them.
TypedSql PostgresExpression::column(const Expression& expression) const {
  TypedSql plain = plainColumn(expression);
  const bool isOfMany =
      rows_ == Rows::grouped && (plain.kind == ValueKind::text || plain.kind == ValueKind::any);
  if (isOfMany) {
    const std::string order = readingOrder_.empty() ? "" : " ORDER BY " + readingOrder_;
    plain.sql = "(array_agg(" + plain.sql + order + "))[1]";
  }
  return plain;
}

// A text literal between operators is the number that it reads as, whole where it says so.
TypedSql PostgresExpression::operand(const Expression& expression) const {
  if (expression.kind != ExpressionKind::text) return numberOf(value(expression));
  if (!sql::numberOf(expression.text)) throw sql::typeMismatch();
  return numberLiteral(expression.text);
}

TypedSql PostgresExpression::arithmetic(const Expression& expression) const {
  TypedSql result = value(expression.operands[0]);
  const Expression* single = &expression.operands[0];
  for (std::size_t i = 1; i < expression.operands.size(); ++i) {
    const Expression& right = expression.operands[i];
    const char op = expression.text[i - 1];
    TypedSql other = value(right);
    const bool joins =
        op == '&' || result.kind == ValueKind::null || other.kind == ValueKind::null ||
        (op == '+' && (result.kind == ValueKind::text || result.kind == ValueKind::any) &&
         (other.kind == ValueKind::text || other.kind == ValueKind::any));
    if (!joins) {
      if (single != nullptr) result = operand(*single);
      other = operand(right);
    }
    result = combined(result, op, other);
    single = nullptr;
  }
  return result;
}

TypedSql PostgresExpression::negative(const Expression& expression) const {
  const TypedSql number = operand(expression.operands[0]);
  if (number.kind == ValueKind::whole) return wholeResult('-', "0", number.sql);
  return {"(0::double precision - " + realOf(number) + ")", ValueKind::real};
}

TypedSql PostgresExpression::aggregate(const Expression& expression) const {
  if (expression.operands.empty()) return {"COUNT(*)", ValueKind::whole};
  // Inside, columns are those of single rows.
  const PostgresExpression inner(scope_, Rows::single, readingOrder_);
  const std::string& name = expression.text;
  if (name == "MIN" || name == "MAX") return inner.extreme(name, expression.operands[0]);
  if (name == "COUNT")
    return {"COUNT(" + inner.value(expression.operands[0]).sql + ")", ValueKind::whole};
  const TypedSql number = inner.operand(expression.operands[0]);
  if (name == "SUM" && number.kind == ValueKind::whole)
    return {"SUM(" + number.sql + "::numeric)", ValueKind::whole};
  // The last digit of a sum depends on the order of its terms.
  const std::string order = readingOrder_.empty() ? "" : " ORDER BY " + readingOrder_;
  return {name + "(" + realOf(number) + order + ")", ValueKind::real};
}

TypedSql PostgresExpression::extreme(const std::string& name, const Expression& expression) const {
  const TypedSql operandValue = value(expression);
  const bool isNumber = operandValue.kind != ValueKind::text && operandValue.kind != ValueKind::any;
  if (isNumber) return {name + "(" + operandValue.sql + ")", operandValue.kind};
  std::string order;
  for (const std::string& key : sortKeys(expression)) {
    order += (order.empty() ? "" : ", ") + key + (name == "MAX" ? " DESC NULLS LAST" : "");
  }
  if (!readingOrder_.empty()) order += ", " + readingOrder_;
  return {"(array_agg(" + operandValue.sql + " ORDER BY " + order + ") FILTER (WHERE " +
              operandValue.sql + " IS NOT NULL))[1]",
          operandValue.kind};
}

std::string PostgresExpression::storedValue(const Expression& expression,
                                            const sql::ColumnShape& column) const {
  if (expression.kind == ExpressionKind::null) return "NULL";
  const bool isNumber = column.kind == ColumnKind::number;
  const TypedSql kept = value(expression);
  if (!isNumber) return column.kind == ColumnKind::text ? textOf(kept) : jsonOf(kept);
  const TypedSql number =
      expression.kind == ExpressionKind::text ? operand(expression) : numberOf(kept);
  if (!column.isWhole) return "(" + realOf(number) + " + 0::double precision)";  // zero has no sign
  return number.kind == ValueKind::whole ? "(" + number.sql + ")::bigint"
                                         : "pelmora_whole(" + number.sql + ")";
}

std::vector<std::string> PostgresExpression::sortKeys(const Expression& expression) const {
  const TypedSql key =
      expression.kind == ExpressionKind::column ? plainColumn(expression) : value(expression);
  switch (key.kind) {
    case ValueKind::text: return {"pelmora_small(" + key.sql + ") COLLATE \"C\""};
    case ValueKind::any: {
      const std::string type = "jsonb_typeof(" + key.sql + ")";
      const std::string contents = key.sql + " #>> '{}'";
      return {"(" + type + " = 'string')",
              "(CASE WHEN " + type + " = 'number' THEN (" + contents + ")::numeric END)",
              "pelmora_small(CASE WHEN " + type + " = 'string' THEN " + contents +
                  " END) COLLATE \"C\""};
    }
    default: return {key.sql};
  }
}

}  // namespace pelmora::postgres
