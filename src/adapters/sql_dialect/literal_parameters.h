// Literals that a rendered statement leaves open.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/statement_shape.h"
#include "adapters/sql_dialect/syntax_tree.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::sql {

// Collects the parameters of one rendering: plain literals of the statement's shape that are
// compared with a column or delivered by the SELECT of an INSERT. There an engine treats a bound
// value as it treats the literal. All others stay in the rendered text.
class LiteralParameters {
 public:
  enum class Form { number, text };
  struct Parameter {
    std::size_t literal = 0;  // index into StatementShape::literals
    Form form = Form::number;
  };

  // `shape` must outlive this object.
  explicit LiteralParameters(const StatementShape& shape) : shape_(shape) {}

  // "?1", "?2" ...: what stands for `literal` in that form. Nothing where it must be written out.
  [[nodiscard]] std::optional<std::string> add(const Expression& literal, Form form);

  // The first one is that of ?1.
  [[nodiscard]] const std::vector<Parameter>& all() const { return parameters_; }

 private:
  const StatementShape& shape_;
  std::vector<Parameter> parameters_;
};

}  // namespace pelmora::sql
