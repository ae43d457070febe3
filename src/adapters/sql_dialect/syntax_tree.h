// Statements of the dialect as trees. Names keep the spelling of the statement.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace pelmora::sql {

enum class ExpressionKind {
  null,
  boolean,      // text: "1" or "0"
  number,       // text: the literal, with its sign
  text,         // text: the decoded literal; a date literal is its ISO text
  column,       // text: the name; qualifier: its table, or empty
  negative,     // operands: 1
  arithmetic,   // text: one operator of + - * / ^ & between each two operands, left to right
  comparison,   // text: = <> < > <= >=; operands: 2
  conjunction,  // operands: 2 or more
  disjunction,  // operands: 2 or more
  negation,     // operands: 1
  isNull,       // operands: 1; negated: IS NOT NULL
  like,         // operands: value, pattern
  between,      // operands: value, low, high
  in,           // operands: value, then the list
  aggregate,    // text: COUNT MIN MAX SUM AVG; operands: 1, or none for COUNT(*)
};

// Long chains are flat (one node with many operands), so that a tree is never deeper than the
// brackets and comparisons that the parser lets pass.
struct Expression {
  ExpressionKind kind = ExpressionKind::null;
  std::string text;
  std::string qualifier;
  std::vector<Expression> operands;
  bool negated = false;
  // Where the number or text stands in the statement just as `text` has it, counted from 1; 0 for
  // all else. Literals of a statement's shape (statement_shape.h) are known by it.
  std::size_t position = 0;
};

enum class JoinKind { inner, left, right, cross };

struct TableName {
  std::string name;
  std::string alias;  // empty: the table's own name

  [[nodiscard]] const std::string& visibleName() const { return alias.empty() ? name : alias; }
};

struct Join;

// `first`, then the joins from left to right. A bracketed group of joins is a source of its own.
struct FromClause {
  std::variant<TableName, std::vector<FromClause>> first;  // a group holds exactly one clause
  std::vector<Join> joins;
};

struct Join {
  JoinKind kind = JoinKind::inner;
  FromClause source;
  std::optional<Expression> condition;  // none only for cross
};

struct SelectItem {
  bool allColumns = false;  // * or qualifier.*
  std::string qualifier;
  Expression value;
  std::string alias;
};

struct OrderTerm {
  Expression value;
  bool descending = false;
};

struct SelectStatement {
  bool distinct = false;
  std::optional<std::int64_t> top;
  std::vector<SelectItem> items;
  std::optional<FromClause> from;
  std::optional<Expression> where;
  std::vector<Expression> groupBy;
  std::optional<Expression> having;
  std::vector<OrderTerm> orderBy;
};

struct InsertStatement {
  std::string table;
  std::optional<std::string> file;   // the database that holds the table, if another one
  std::vector<std::string> columns;  // empty: as the values or the select give them
  std::variant<std::vector<Expression>, SelectStatement> source;
};

struct DeleteStatement {
  TableName table;
  std::optional<Expression> where;
};

struct Assignment {
  std::string column;
  Expression value;
};

struct UpdateStatement {
  TableName table;
  std::vector<Assignment> assignments;
  std::optional<Expression> where;
};

using Statement = std::variant<SelectStatement, InsertStatement, DeleteStatement, UpdateStatement>;

}  // namespace pelmora::sql
