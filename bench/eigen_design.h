// The terms of the catalogue's equations as a rival forms them: one logarithm and a multiplication
// for each power.
// SPDX-License-Identifier: MIT
#pragma once

#include <Eigen/Dense>

#include <cmath>
#include <span>

namespace pelmora::bench {

// order: of a polynomial in log10(x); 0 for the powers -4 .. 4 of ln(x), by rising magnitude.
inline Eigen::MatrixXd design(std::span<const double> x, int order) {
  const auto n = static_cast<Eigen::Index>(x.size());
  Eigen::MatrixXd columns(n, order > 0 ? order + 1 : 9);
  columns.col(0).setOnes();
  const Eigen::ArrayXd l = Eigen::Map<const Eigen::ArrayXd>(x.data(), n).log();
  if (order > 0) {
    columns.col(1) = l * (1 / std::log(10.0));
    for (Eigen::Index j = 2; j <= order; ++j)
      columns.col(j) = columns.col(j - 1).cwiseProduct(columns.col(1));
    return columns;
  }
  columns.col(1) = l;
  columns.col(2) = l.inverse();
  for (Eigen::Index j = 3; j < 9; ++j)
    columns.col(j) = columns.col(j - 2).cwiseProduct(columns.col(j % 2 == 1 ? 1 : 2));
  return columns;
}

}  // namespace pelmora::bench
