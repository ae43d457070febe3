// Expressions of the dialect in the server's SQL.
//
// The server has types: an expression is written together with what is known of its value. What it
// computes differently goes through functions that the database brings along (server_functions.h).
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/name_scope.h"
#include "adapters/sql_dialect/syntax_tree.h"

#include <string>
#include <string_view>
#include <vector>

namespace pelmora::postgres {

enum class ValueKind {
  null,
  truth,  // -1 or 0
  whole,  // without a limit while it is computed
  real,
  text,
  any  // JSON: a number or a text
};

struct TypedSql {
  std::string sql;
  ValueKind kind = ValueKind::null;
};

[[nodiscard]] TypedSql numberLiteral(std::string_view literal);
// As JSON, so that numbers and texts can be compared.
[[nodiscard]] std::string jsonOf(const TypedSql& value);
[[nodiscard]] std::string textOf(const TypedSql& value);
// A text literal where a number is needed counts as the number that it reads as.
// Errors: type mismatch for another text.
[[nodiscard]] TypedSql numberOf(const TypedSql& value);

class PostgresExpression {
 public:
  // What a column delivers outside aggregates: its row's value, or that of a group.
  enum class Rows { single, grouped };

  // readingOrder: what rows are read by, for aggregates that depend on it; may be empty.
  explicit PostgresExpression(const sql::NameScope& scope, Rows rows = Rows::single,
                              std::string readingOrder = {})
      : scope_(scope), rows_(rows), readingOrder_(std::move(readingOrder)) {}

  [[nodiscard]] const sql::NameScope& scope() const { return scope_; }

  [[nodiscard]] TypedSql value(const sql::Expression& expression) const;
  [[nodiscard]] std::string condition(const sql::Expression& expression) const;
  // As the column keeps it.
  [[nodiscard]] std::string storedValue(const sql::Expression& expression,
                                        const sql::ColumnShape& column) const;
  // What is sorted and grouped by: numbers before texts, texts without regard to case.
  [[nodiscard]] std::vector<std::string> sortKeys(const sql::Expression& expression) const;

 private:
  [[nodiscard]] TypedSql column(const sql::Expression& expression) const;
  [[nodiscard]] TypedSql plainColumn(const sql::Expression& expression) const;
  [[nodiscard]] TypedSql operand(const sql::Expression& expression) const;
  [[nodiscard]] TypedSql arithmetic(const sql::Expression& expression) const;
  [[nodiscard]] TypedSql negative(const sql::Expression& expression) const;
  [[nodiscard]] TypedSql aggregate(const sql::Expression& expression) const;
  [[nodiscard]] TypedSql extreme(const std::string& name, const sql::Expression& expression) const;
  [[nodiscard]] std::string chain(const sql::Expression& expression, std::string_view joint) const;
  [[nodiscard]] std::string comparison(const sql::Expression& left, std::string_view op,
                                       const sql::Expression& right) const;
  [[nodiscard]] std::string comparisonWithLiteral(const sql::Expression& left, std::string_view op,
                                                  const sql::Expression& literal) const;
  [[nodiscard]] std::string between(const sql::Expression& expression) const;
  [[nodiscard]] std::string in(const sql::Expression& expression) const;
  // Empty if it is another list.
  [[nodiscard]] std::string inWholeNumbers(const sql::Expression& expression) const;

  const sql::NameScope& scope_;
  Rows rows_;
  std::string readingOrder_;
};

}  // namespace pelmora::postgres
