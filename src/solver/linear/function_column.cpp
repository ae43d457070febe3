// SPDX-License-Identifier: MIT
#include "solver/linear/function_column.h"

#include "solver/equations/block_evaluator.h"
#include "solver/linear/column_kernels.h"

#include <algorithm>

namespace pelmora::solver {

std::vector<Column> columnsOf(const Expression& expression, std::span<const NodeId> ids,
                              std::span<const double> x) {
  using Evaluator = BlockEvaluator<DoubleDouble>;
  Evaluator evaluator(expression, ids);
  std::vector<Column> columns(ids.size(), Column(x.size()));
  for (std::size_t start = 0; start < x.size(); start += Evaluator::block) {
    const std::size_t count = std::min(Evaluator::block, x.size() - start);
    evaluator.load(x.subspan(start, count), {});
    for (std::size_t j = 0; j < ids.size(); ++j) {
      const auto values = evaluator.value(ids[j]);
      for (std::size_t k = 0; k < count; ++k) columns[j].set(start + k, values[k]);
    }
  }
  return columns;
}

Column columnOfFunction(const Expression& expression, NodeId id, std::span<const double> x) {
  const Node& node = expression.at(id);
  if (node.op == Op::ln && expression.at(node.left).op == Op::variable) return logarithms(x);
  return columnsOf(expression, {{id}}, x).front();
}

}  // namespace pelmora::solver
