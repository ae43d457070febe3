// Expressions of the dialect in SQLite's SQL.
//
// What SQLite does otherwise goes through functions and a collation that the connection must have:
//   dialect_arithmetic(program, v1, v2, ...)  `program` in postfix notation: 'v' the next value,
//   'n' a
//       change of sign, the operators + - * / ^ & themselves. Null in, null out, & excepted; errors
//       for text that is not a number, division by zero and results beyond the range.
//   dialect_like(value, pattern)
//   DIALECT_TEXT                              collation, text without regard to case
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/literal_parameters.h"
#include "adapters/sql_dialect/name_scope.h"
#include "adapters/sql_dialect/syntax_tree.h"

#include <string>
#include <string_view>
#include <vector>

namespace pelmora::sqlite {

[[nodiscard]] std::string quotedName(std::string_view name);
[[nodiscard]] std::string quotedText(std::string_view text);

class SqliteExpression {
 public:
  // `parameters` may be null: then every literal is written out.
  SqliteExpression(const sql::NameScope& scope, sql::LiteralParameters* parameters)
      : scope_(scope), parameters_(parameters) {}

  [[nodiscard]] const sql::NameScope& scope() const { return scope_; }

  // Truth values are -1 and 0, as in the dialect.
  [[nodiscard]] std::string value(const sql::Expression& expression) const;
  // A value that goes from a SELECT into a table.
  [[nodiscard]] std::string deliveredValue(const sql::Expression& expression) const;
  [[nodiscard]] std::string condition(const sql::Expression& expression) const;
  // A value that is sorted or grouped by: texts without regard to case.
  [[nodiscard]] std::string sortValue(const sql::Expression& expression) const;

 private:
  enum class Kind { null, truth, number, text, any };

  [[nodiscard]] Kind kindOf(const sql::Expression& expression) const;
  [[nodiscard]] std::string column(const sql::Expression& expression) const;
  [[nodiscard]] std::string arithmetic(const sql::Expression& expression) const;
  void compile(const sql::Expression& expression, std::string& program, std::string& values,
               int& count) const;
  [[nodiscard]] std::string aggregate(const sql::Expression& expression) const;
  [[nodiscard]] std::string chain(const sql::Expression& expression, std::string_view joint) const;
  [[nodiscard]] std::string comparison(const sql::Expression& left, std::string_view op,
                                       const sql::Expression& right) const;
  [[nodiscard]] std::string comparisonWithLiteral(const sql::Expression& left, std::string_view op,
                                                  const sql::Expression& literal) const;
  [[nodiscard]] std::string between(const sql::Expression& expression) const;
  [[nodiscard]] std::string numberItem(const sql::Expression& left,
                                       const sql::Expression& item) const;
  [[nodiscard]] std::string in(const sql::Expression& expression) const;

  const sql::NameScope& scope_;
  sql::LiteralParameters* parameters_;
};

}  // namespace pelmora::sqlite
