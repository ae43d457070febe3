// Building the trees of expressions.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/syntax_tree.h"

#include <string>
#include <utility>
#include <vector>

namespace pelmora::sql {

inline Expression node(ExpressionKind kind, std::string text,
                       std::vector<Expression> operands = {}) {
  Expression result;
  result.kind = kind;
  result.text = std::move(text);
  result.operands = std::move(operands);
  return result;
}

// A list of one that is moved, not copied.
inline std::vector<Expression> list(Expression first) {
  std::vector<Expression> result;
  result.push_back(std::move(first));
  return result;
}

}  // namespace pelmora::sql
