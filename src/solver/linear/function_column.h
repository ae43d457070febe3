// Functions of x at many points, to double-double precision.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/equations/expression.h"
#include "solver/linear/nested_fit.h"

#include <span>
#include <vector>

namespace pelmora::solver {

// Values of nodes without parameters at every x, one column for each node.
[[nodiscard]] std::vector<Column> columnsOf(const Expression& expression,
                                            std::span<const NodeId> ids, std::span<const double> x);
// The same of one node; ln(x) at the speed of its own loop.
[[nodiscard]] Column columnOfFunction(const Expression& expression, NodeId id,
                                      std::span<const double> x);

}  // namespace pelmora::solver
