// Least squares of all polynomials in one function u of x, up to a highest power, in one go.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/linear/nested_fit.h"

#include <span>
#include <vector>

namespace pelmora::solver {

// f(u) = u^lowest * (polynomial in u). The fit itself is done over the Chebyshev polynomials T(j)
// of t = (u - middle) * stretch, which runs from -1 to 1 over the data: they are almost orthogonal
// there, where powers of u are almost parallel. Where negative powers have their pole among the
// data, these powers themselves come first and the T(j) follow them without the factor u^lowest.
class PowerFit {
 public:
  // Shape:  u and y of n values, all finite, n >= columns >= 1; u^lowest finite.
  // Method: the normal equations of the Chebyshev columns in double-double arithmetic, which need
  //         3 `columns` sums in one pass over the points; where the points leave the columns too
  //         near to dependence for that (fewer distinct u than columns, a pole inside the range),
  //         orthogonal factorisation of the columns.
  // ySquares: sum of y^2.
  PowerFit(const Column& u, std::span<const double> y, DoubleDouble ySquares, int lowest,
           std::size_t columns);

  // Term i of `fit` is u^(lowest + i). fit.factor.rank says how many columns can be told apart.
  NestedFit fit;
  double middle = 0, stretch = 1;
  int lowest = 0;
  bool hasPole = false;  // negative powers apart from the T(j)

  // How many columns were asked for.
  [[nodiscard]] std::size_t columns() const { return columns_; }
  // Parameters of the first p columns themselves; p <= rank.
  [[nodiscard]] std::vector<DoubleDouble> columnParameters(std::size_t p) const;
  // The first columns at u.
  void columnsAt(double u, std::span<double> columns) const;

 private:
  std::size_t columns_;
  UpperTriangle columnSums_;  // cell (k, p - 1): parameter of column k among p
};

}  // namespace pelmora::solver
