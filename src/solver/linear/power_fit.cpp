// SPDX-License-Identifier: MIT
#include "solver/linear/power_fit.h"

#include "solver/linear/column_kernels.h"
#include "solver/arithmetic/double_double_functions.h"
#include "solver/linear/orthogonal_factor.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace pelmora::solver {
namespace {

// What is left of a column's squares beside the columns before it; below this the sums lose more
// than the digits that double-double has to spare.
constexpr double leastPivot = 1e-6;
// A residual sum of squares below this share of the sum of y^2 is formed from the residuals.
constexpr double leastResidualShare = 1e-12;
// Distinct x that differ by rounding only do not tell columns over -1 .. 1 apart.
constexpr double dependenceOfPolynomials = 1e-13;

// The sums carry 28 digits of the largest weight. Where the weights differ by more than this, what
// that leaves of the smallest is no longer plenty.
constexpr double mostSpreadOfSquares = 0x1p32;

// The largest u^(2 lowest) over the points; infinite where the sums would not do.
double largestSquare(const Range& u, int lowest) {
  const double low = std::fabs(u.low), high = std::fabs(u.high);
  const bool hasZero = !(u.low > 0) && !(u.high < 0);
  const double least = wholePower(hasZero ? 0 : std::min(low, high), 2 * std::abs(lowest));
  const double most = wholePower(std::max(low, high), 2 * std::abs(lowest));
  if (!(most <= mostSpreadOfSquares * least)) return std::numeric_limits<double>::infinity();
  return lowest < 0 ? 1 / least : most;
}

// Cholesky's factorisation of the normal equations; stops at a pivot that is too small.
Factor choleskyFactor(const Moments& sums, DoubleDouble ySquares) {
  const std::size_t p = sums.products.size();
  Factor factor;
  factor.r = UpperTriangle(p);
  factor.z.resize(p);
  factor.inverse.resize(p);
  EliminationTask task;
  task.squares = sums.squares.data();
  task.products = sums.products.data();
  task.p = p;
  task.leastPivot = leastPivot;
  task.r = factor.r.cells.data();
  task.z = factor.z.data();
  task.inverse = factor.inverse.data();
  factor.rank = pointKernels().eliminate(task);
  for (std::size_t k = 0; k < factor.rank; ++k) ySquares -= factor.z[k] * factor.z[k];
  factor.residualSquares.assign(1, ySquares);  // with all columns of the rank
  return factor;
}

// The columns in powers of u, counted from the lowest: column j of the answer is column j of the
// fit.
UpperTriangle powersOfColumns(std::size_t p, std::size_t poles, double middle, double stretch) {
  UpperTriangle m(p);
  const std::size_t first = std::min(p, poles);
  for (std::size_t j = 0; j < first; ++j) m.at(j, j) = DoubleDouble(1);
  if (first == p) return m;
  pointKernels().chebyshevPowers(twoProduct(-middle, stretch), stretch, p - first, p,
                                 &m.at(first, first));
  return m;
}

// T: DoubleDouble or double.
template <class T>
void fillColumns(const PowerFit& fit, T u, std::span<T> columns) {
  const T t = (u - T(fit.middle)) * T(fit.stretch);
  std::size_t j = 0;
  T now(1.0);
  if (fit.hasPole) {
    for (int power = fit.lowest; power < 0 && j < columns.size(); ++power) {
      columns[j++] = wholePower(u, power);
    }
  } else if (fit.lowest != 0) {
    now = wholePower(u, fit.lowest);
  }
  T before = t * now;
  for (; j < columns.size(); ++j) {
    columns[j] = now;
    const T after = (t + t) * now - before;
    before = now;
    now = after;
  }
}

std::vector<Column> exactColumns(const PowerFit& fit, const Column& u, std::size_t p) {
  std::vector<Column> columns(p, Column(u.size()));
  std::vector<DoubleDouble> row(p);
  for (std::size_t k = 0; k < u.size(); ++k) {
    fillColumns(fit, u.at(k), std::span(row));
    for (std::size_t j = 0; j < p; ++j) columns[j].set(k, row[j]);
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

PowerFit::PowerFit(const Column& u, std::span<const double> y, DoubleDouble ySquares,
                   int lowestPower, std::size_t columns)
    : lowest(lowestPower), columns_(columns) {
  const Range extent = range(u);
  middle = extent.low + (extent.high - extent.low) / 2;
  if (extent.high > extent.low) stretch = 2 / (extent.high - extent.low);
  if (!std::isfinite(stretch)) stretch = 1;
  const PowerScale by{lowest, middle, stretch, largestSquare(extent, lowest)};
  Factor factor;  // of rank 0: to be found otherwise
  if (std::isnormal(by.largestSquare))
    factor = choleskyFactor(moments(u, y, by, columns - 1), ySquares);
  const bool isExactFit =
      factor.rank == columns && !(factor.residualSquares[0].hi > leastResidualShare * ySquares.hi);
  if (factor.rank < columns || isExactFit) {
    hasPole = lowest < 0 && factor.rank < columns;
    factor = orthogonalFactor(exactColumns(*this, u, columns), exactColumn(y),
                              lowest == 0 ? dependenceOfPolynomials : dependenceOfExactColumns);
  } else {
    fillResidualSquares(factor, factor.residualSquares[0]);
  }
  const std::size_t poles = hasPole ? static_cast<std::size_t>(-lowest) : 0;
  columnSums_ = makeTermsFit(factor).parameterSums;
  fit = makeNestedFit(std::move(factor), powersOfColumns(columns, poles, middle, stretch));
}

std::vector<DoubleDouble> PowerFit::columnParameters(std::size_t p) const {
  std::vector<DoubleDouble> result(p);
  for (std::size_t k = 0; k < p; ++k) result[k] = columnSums_.at(k, p - 1);
  return result;
}

void PowerFit::columnsAt(double u, std::span<double> columns) const {
  fillColumns(*this, u, columns);
}

}  // namespace pelmora::solver
