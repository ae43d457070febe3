// SPDX-License-Identifier: MIT
#include "solver/linear/orthogonal_factor.h"

#include "solver/linear/column_kernels.h"
#include "solver/arithmetic/double_double_functions.h"

namespace pelmora::solver {

Factor orthogonalFactor(std::vector<Column> columns, Column y, double tolerance) {
  const std::size_t p = columns.size();
  Factor factor;
  factor.r = UpperTriangle(p);
  factor.z.resize(p);
  factor.inverse.resize(p);
  std::vector<DoubleDouble> lengths;
  bool isLeading = true;  // no dependent column so far; the others then only count
  for (const Column& column : columns) lengths.push_back(sqrt(dot(column, column)));
  for (std::size_t k = 0; k < p; ++k) {
    const DoubleDouble length = sqrt(dot(columns[k], columns[k]));
    if (!(length.hi > tolerance * lengths[k].hi)) {
      isLeading = false;
      continue;
    }
    ++factor.independent;
    factor.r.at(k, k) = length;
    const DoubleDouble inverse = DoubleDouble(1) / length;
    scale(columns[k], inverse);
    for (std::size_t j = k + 1; j < p; ++j) {
      factor.r.at(k, j) = dot(columns[k], columns[j]);
      subtractMultiple(columns[j], factor.r.at(k, j), columns[k]);
    }
    if (!isLeading) continue;
    factor.inverse[k] = inverse;
    factor.z[k] = dot(columns[k], y);
    subtractMultiple(y, factor.z[k], columns[k]);
    factor.rank = k + 1;
  }
  factor.residualSquares.resize(factor.rank + 1);
  factor.residualSquares[factor.rank] = dot(y, y);
  for (std::size_t k = factor.rank; k-- > 0;) {
    factor.residualSquares[k] = factor.residualSquares[k + 1] + factor.z[k] * factor.z[k];
  }
  return factor;
}

}  // namespace pelmora::solver
