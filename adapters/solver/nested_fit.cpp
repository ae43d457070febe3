// SPDX-License-Identifier: MIT
#include "adapters/solver/nested_fit.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pelmora::solver {

std::vector<DoubleDouble> NestedFit::parameters(std::size_t p) const {
  std::vector<DoubleDouble> result(p);
  for (std::size_t k = 0; k < p; ++k) result[k] = parameterSums.at(k, p - 1);
  return result;
}

std::vector<DoubleDouble> NestedFit::columnParameters(std::size_t p) const {
  std::vector<DoubleDouble> result(factor.z.begin(), factor.z.begin() + static_cast<std::ptrdiff_t>(p));
  for (std::size_t k = p; k-- > 0;) {
    result[k] *= inverseDiagonal[k];
    const DoubleDouble share = -result[k];
    for (std::size_t i = 0; i < k; ++i) result[i] += factor.r.at(i, k) * share;
  }
  return result;
}

double NestedFit::unitError(std::size_t p, std::size_t k) const {
  double sum = 0;
  for (std::size_t i = k; i < p; ++i) sum += n.at(k, i).hi * n.at(k, i).hi;
  return std::sqrt(sum);
}

DoubleDouble NestedFit::unitCovariance(std::size_t p, std::size_t k, std::size_t l) const {
  DoubleDouble sum;
  for (std::size_t i = std::max(k, l); i < p; ++i) sum += n.at(k, i) * n.at(l, i);
  return sum;
}

NestedFit makeNestedFit(Factor factor, const UpperTriangle& m) {
  NestedFit fit;
  const std::size_t p = factor.rank;
  fit.n = UpperTriangle(p);
  fit.inverseDiagonal.resize(p);
  for (std::size_t i = 0; i < p; ++i) {
    const DoubleDouble inverse = DoubleDouble(1) / factor.r.at(i, i);
    for (std::size_t k = 0; k <= i; ++k) fit.n.at(k, i) = m.at(k, i);
    for (std::size_t j = 0; j < i; ++j) {
      const DoubleDouble share = -factor.r.at(j, i);
      for (std::size_t k = 0; k <= j; ++k) fit.n.at(k, i) += fit.n.at(k, j) * share;
    }
    for (std::size_t k = 0; k <= i; ++k) fit.n.at(k, i) *= inverse;
    fit.inverseDiagonal[i] = inverse;
  }
  fit.parameterSums = UpperTriangle(p);
  for (std::size_t k = 0; k < p; ++k) {
    DoubleDouble sum;
    for (std::size_t i = k; i < p; ++i) fit.parameterSums.at(k, i) = sum += fit.n.at(k, i) * factor.z[i];
  }
  fit.factor = std::move(factor);
  return fit;
}

}  // namespace pelmora::solver
