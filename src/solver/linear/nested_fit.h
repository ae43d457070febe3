// Least squares of a sequence of columns: one factorisation, every leading set of columns a fit.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/arithmetic/double_double.h"

#include <span>
#include <vector>

namespace pelmora::solver {

// n values to double-double precision.
struct Column {
  std::vector<double> hi, lo;
  Column() = default;
  explicit Column(std::size_t size) : hi(size), lo(size) {}
  [[nodiscard]] std::size_t size() const { return hi.size(); }
  [[nodiscard]] DoubleDouble at(std::size_t k) const { return {hi[k], lo[k]}; }
  void set(std::size_t k, DoubleDouble value) { hi[k] = value.hi, lo[k] = value.lo; }
};

// Square, row-major; zero below the diagonal.
struct UpperTriangle {
  std::size_t size = 0;
  std::vector<DoubleDouble> cells;
  UpperTriangle() = default;
  explicit UpperTriangle(std::size_t n) : size(n), cells(n * n) {}
  [[nodiscard]] static UpperTriangle identity(std::size_t n) {
    UpperTriangle result(n);
    for (std::size_t k = 0; k < n; ++k) result.at(k, k) = DoubleDouble(1);
    return result;
  }
  [[nodiscard]] DoubleDouble& at(std::size_t row, std::size_t column) {
    return cells[row * size + column];
  }
  [[nodiscard]] DoubleDouble at(std::size_t row, std::size_t column) const {
    return cells[row * size + column];
  }
};

// B = Q R and z = Q'y for the columns B, without Q.
//
// residualSquares[k] is the residual sum of squares with the first k columns, k = 0 .. rank.
// Where `rank` is less than the number of columns, column `rank` depends on those before it, and
// `independent` is the rank of all columns. inverse[k] = 1 / r(k, k), k below rank.
struct Factor {
  UpperTriangle r;
  std::vector<DoubleDouble> z, inverse, residualSquares;
  std::size_t rank = 0, independent = 0;
};

// Parameters and their covariance for every leading set of columns.
//
// With p columns: parameter k = sum over i in k .. p-1 of n(k, i) z(i), and covariance(k, l) =
// s2 * sum over i of n(k, i) n(l, i), where n = m R^-1 and the columns B = (terms of the equation)
// m.
struct NestedFit {
  UpperTriangle n;
  UpperTriangle parameterSums;  // cell (k, i): sum over j in k .. i of n(k, j) z(j)
  Factor factor;

  [[nodiscard]] std::vector<DoubleDouble> parameters(std::size_t p) const;
  // Standard error of term k for a residual variance of 1. Plain doubles will do: nothing cancels.
  [[nodiscard]] double unitError(std::size_t p, std::size_t k) const;
  // Of the first p terms, for a residual variance: p x p, row-major, upper half.
  [[nodiscard]] std::vector<DoubleDouble> covariance(std::size_t p, DoubleDouble variance) const;
};

// `m`: expansion of column j in the terms of the equation stands in column j. At most highestDegree
// + 1 columns.
[[nodiscard]] NestedFit makeNestedFit(Factor factor, const UpperTriangle& m);
// Where the columns are the terms themselves.
[[nodiscard]] NestedFit makeTermsFit(Factor factor);

}  // namespace pelmora::solver
