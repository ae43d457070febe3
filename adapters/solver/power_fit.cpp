// SPDX-License-Identifier: MIT
#include "adapters/solver/power_fit.h"

#include "adapters/solver/column_kernels.h"
#include "adapters/solver/double_double_functions.h"
#include "adapters/solver/orthogonal_factor.h"

#include <algorithm>

namespace pelmora::solver {
namespace {

// What is left of a column's squares beside the columns before it; below this the sums lose more
// than the digits that double-double has to spare.
constexpr double leastPivot = 1e-8;
// A residual sum of squares below this share of the sum of y^2 is formed from the residuals.
constexpr double leastResidualShare = 1e-12;
// Distinct x that differ by rounding only do not tell columns over -1 .. 1 apart.
constexpr double dependenceOfPolynomials = 1e-13;

Column weights(const Column& u, int lowest) {
  if (lowest == 0) return {};
  Column w(u.size());
  for (std::size_t k = 0; k < u.size(); ++k) w.set(k, wholePower(u.at(k), lowest));
  return w;
}

// Cholesky's factorisation of the normal equations; stops at a pivot that is too small.
Factor choleskyFactor(const Moments& sums, DoubleDouble ySquares) {
  const std::size_t p = sums.products.size();
  const DoubleDouble half(0.5);
  Factor factor;
  factor.r = UpperTriangle(p);
  factor.z.resize(p);
  for (std::size_t k = 0; k < p; ++k) {
    for (std::size_t j = k; j < p; ++j) {
      DoubleDouble rest = (sums.squares[j + k] + sums.squares[j - k]) * half;
      const double whole = rest.hi;
      for (std::size_t i = 0; i < k; ++i) rest -= factor.r.at(i, k) * factor.r.at(i, j);
      if (j == k && !(rest.hi > leastPivot * whole)) return factor;
      factor.r.at(k, j) = j == k ? sqrt(rest) : rest / factor.r.at(k, k);
    }
    DoubleDouble rest = sums.products[k];
    for (std::size_t i = 0; i < k; ++i) rest -= factor.r.at(i, k) * factor.z[i];
    factor.z[k] = rest / factor.r.at(k, k);
    ySquares -= factor.z[k] * factor.z[k];
    factor.rank = k + 1;
    factor.residualSquares.assign(1, ySquares);  // with the columns so far
  }
  return factor;
}

// Chebyshev column j in powers of u stands in column j.
UpperTriangle powersOfColumns(std::size_t p, double middle, double stretch) {
  const DoubleDouble slope(stretch), shift = twoProduct(-middle, stretch);
  UpperTriangle m(p);
  m.at(0, 0) = DoubleDouble(1);
  if (p > 1) m.at(0, 1) = shift, m.at(1, 1) = slope;
  for (std::size_t j = 2; j < p; ++j) {
    for (std::size_t k = 0; k <= j; ++k) {
      DoubleDouble sum = shift * m.at(k, j - 1);
      if (k > 0) sum += slope * m.at(k - 1, j - 1);
      m.at(k, j) = sum + sum - m.at(k, j - 2);
    }
  }
  return m;
}

std::vector<Column> chebyshevColumns(const Column& u, const Column& w, std::size_t p, double middle,
                                     double stretch) {
  std::vector<Column> columns(p, Column(u.size()));
  for (std::size_t k = 0; k < u.size(); ++k) {
    const DoubleDouble t = (u.at(k) - DoubleDouble(middle)) * DoubleDouble(stretch);
    const DoubleDouble twice = t + t;
    DoubleDouble now = w.size() == 0 ? DoubleDouble(1) : w.at(k), before = t * now;
    for (std::size_t j = 0; j < p; ++j) {
      columns[j].set(k, now);
      const DoubleDouble after = twice * now - before;
      before = now;
      now = after;
    }
  }
  return columns;
}

Column exactColumn(std::span<const double> y) {
  Column column(y.size());
  std::copy(y.begin(), y.end(), column.hi.begin());
  return column;
}

// Residual squares for every leading set of columns, from that of all of them.
void fillResidualSquares(Factor& factor, DoubleDouble last) {
  factor.residualSquares.assign(factor.rank + 1, last);
  for (std::size_t k = factor.rank; k-- > 0;) {
    factor.residualSquares[k] = factor.residualSquares[k + 1] + factor.z[k] * factor.z[k];
  }
}

}  // namespace

PowerFit::PowerFit(const Column& u, std::span<const double> y, int lowestPower, std::size_t columns)
    : lowest(lowestPower), columns_(columns) {
  const auto [low, high] = std::minmax_element(u.hi.begin(), u.hi.end());
  middle = *low + (*high - *low) / 2;
  if (*high > *low) stretch = 2 / (*high - *low);
  if (!std::isfinite(stretch)) stretch = 1;
  const Column w = weights(u, lowest);
  const Column observed = exactColumn(y);
  const DoubleDouble ySquares = dot(observed, observed);
  Factor factor = choleskyFactor(moments(u, w, y, middle, stretch, columns - 1), ySquares);
  const bool isExactFit = factor.rank == columns &&
                          !(factor.residualSquares[0].hi > leastResidualShare * ySquares.hi);
  if (factor.rank < columns || isExactFit) {
    factor = orthogonalFactor(chebyshevColumns(u, w, columns, middle, stretch), observed,
                              lowest == 0 ? dependenceOfPolynomials : dependenceOfExactColumns);
  } else {
    fillResidualSquares(factor, factor.residualSquares[0]);
  }
  fit = makeNestedFit(std::move(factor), powersOfColumns(columns, middle, stretch));
}

void PowerFit::columnsAt(double u, std::span<double> columns) const {
  const double t = (u - middle) * stretch;
  double now = lowest == 0 ? 1 : wholePower(u, lowest), before = t * now;
  for (double& column : columns) {
    column = now;
    const double after = 2 * t * now - before;
    before = now;
    now = after;
  }
}

}  // namespace pelmora::solver
