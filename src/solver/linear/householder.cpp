// SPDX-License-Identifier: MIT
#include "solver/linear/householder.h"

#include <algorithm>
#include <cmath>

namespace pelmora::solver {
namespace {

// Takes 2 v v'/(v'v) off `target`, from row `row` on.
void reflect(const std::vector<double>& v, double vv, std::vector<double>& target,
             std::size_t row) {
  double sum = 0;
  for (std::size_t i = row; i < v.size(); ++i) sum += v[i] * target[i];
  const double factor = 2 * sum / vv;
  for (std::size_t i = row; i < v.size(); ++i) target[i] -= factor * v[i];
}

}  // namespace

double lengthOf(const std::vector<double>& values, std::size_t first) {
  double largest = 0;
  for (std::size_t i = first; i < values.size(); ++i)
    largest = std::max(largest, std::fabs(values[i]));
  if (largest == 0 || !std::isfinite(largest)) return largest;
  double sum = 0;
  for (std::size_t i = first; i < values.size(); ++i) {
    const double part = values[i] / largest;
    sum += part * part;
  }
  return largest * std::sqrt(sum);
}

void triangularise(std::vector<std::vector<double>>& columns, std::vector<double>& y) {
  for (std::size_t k = 0; k < columns.size(); ++k) {
    const double length = lengthOf(columns[k], k);
    if (!(length > 0)) continue;
    std::vector<double> v = columns[k];
    for (std::size_t i = k; i < v.size(); ++i) v[i] /= length;
    v[k] += v[k] < 0 ? -1 : 1;
    double vv = 0;
    for (std::size_t i = k; i < v.size(); ++i) vv += v[i] * v[i];
    for (std::size_t j = k; j < columns.size(); ++j) reflect(v, vv, columns[j], k);
    reflect(v, vv, y, k);
  }
}

std::vector<double> backSubstitute(const std::vector<std::vector<double>>& columns,
                                   const std::vector<double>& y, std::size_t first,
                                   std::size_t last, double tolerance) {
  std::vector<double> solution(last - first, 0.0);
  for (std::size_t k = last; k-- > first;) {
    double whole = 0;
    for (std::size_t i = first; i <= k; ++i) whole = std::max(whole, std::fabs(columns[k][i]));
    if (!(std::fabs(columns[k][k]) > tolerance * whole)) continue;
    double rest = y[k];
    for (std::size_t j = k + 1; j < last; ++j) rest -= columns[j][k] * solution[j - first];
    solution[k - first] = rest / columns[k][k];
  }
  return solution;
}

}  // namespace pelmora::solver
