// SPDX-License-Identifier: MIT
#include "solver/linear/nested_fit.h"

#include "solver/arithmetic/point_kernels.h"

#include <cmath>
#include <utility>

namespace pelmora::solver {

std::vector<DoubleDouble> NestedFit::parameters(std::size_t p) const {
  std::vector<DoubleDouble> result(p);
  for (std::size_t k = 0; k < p; ++k) result[k] = parameterSums.at(k, p - 1);
  return result;
}

double NestedFit::unitError(std::size_t p, std::size_t k) const {
  double sum = 0;
  for (std::size_t i = k; i < p; ++i) sum += n.at(k, i).hi * n.at(k, i).hi;
  return std::sqrt(sum);
}

std::vector<DoubleDouble> NestedFit::covariance(std::size_t p, DoubleDouble variance) const {
  std::vector<DoubleDouble> cells(p * p);
  pointKernels().covariance({n.cells.data(), p, n.size, variance, cells.data()});
  return cells;
}

NestedFit makeNestedFit(Factor factor, const UpperTriangle& m) {
  NestedFit fit;
  fit.n = UpperTriangle(factor.rank);
  fit.parameterSums = UpperTriangle(factor.rank);
  NestTask task;
  task.r = factor.r.cells.data();
  task.z = factor.z.data();
  task.inverse = factor.inverse.data();
  task.m = m.cells.data();
  task.p = factor.rank;
  task.rSize = factor.r.size;
  task.mSize = m.size;
  task.n = fit.n.cells.data();
  task.sums = fit.parameterSums.cells.data();
  pointKernels().nest(task);
  fit.factor = std::move(factor);
  return fit;
}

NestedFit makeTermsFit(Factor factor) {
  const std::size_t p = factor.rank;
  return makeNestedFit(std::move(factor), UpperTriangle::identity(p));
}

}  // namespace pelmora::solver
