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
constexpr double leastPivot = 1e-6;
// A residual sum of squares below this share of the sum of y^2 is formed from the residuals.
constexpr double leastResidualShare = 1e-12;
// Distinct x that differ by rounding only do not tell columns over -1 .. 1 apart.
constexpr double dependenceOfPolynomials = 1e-13;

// Cholesky's factorisation of the normal equations; stops at a pivot that is too small.
Factor choleskyFactor(const Moments& sums, DoubleDouble ySquares) {
  const std::size_t p = sums.products.size();
  const DoubleDouble half(0.5);
  Factor factor;
  factor.r = UpperTriangle(p);
  factor.z.resize(p);
  UpperTriangle& r = factor.r;
  std::vector<double> wholes(p);
  for (std::size_t k = 0; k < p; ++k) {
    for (std::size_t j = k; j < p; ++j) r.at(k, j) = (sums.squares[j + k] + sums.squares[j - k]) * half;
    wholes[k] = r.at(k, k).hi;
    factor.z[k] = sums.products[k];
  }
  for (std::size_t k = 0; k < p; ++k) {
    if (!(r.at(k, k).hi > leastPivot * wholes[k])) return factor;
    r.at(k, k) = sqrt(r.at(k, k));
    const DoubleDouble inverse = DoubleDouble(1) / r.at(k, k);
    for (std::size_t j = k + 1; j < p; ++j) r.at(k, j) *= inverse;
    factor.z[k] *= inverse;
    // The rest at once, row by row: no step waits for the one before it.
    for (std::size_t i = k + 1; i < p; ++i) {
      const DoubleDouble share = -r.at(k, i);
      for (std::size_t j = i; j < p; ++j) r.at(i, j) += share * r.at(k, j);
      factor.z[i] += share * factor.z[k];
    }
    ySquares -= factor.z[k] * factor.z[k];
    factor.rank = k + 1;
    factor.residualSquares.assign(1, ySquares);  // with the columns so far
  }
  return factor;
}

// The columns in powers of u, counted from the lowest: column j of the answer is column j of the fit.
UpperTriangle powersOfColumns(std::size_t p, std::size_t poles, double middle, double stretch) {
  const DoubleDouble slope(stretch), shift = twoProduct(-middle, stretch);
  UpperTriangle m(p);
  for (std::size_t j = 0; j < std::min(p, poles); ++j) m.at(j, j) = DoubleDouble(1);
  for (std::size_t j = poles; j < p; ++j) {
    if (j == poles) {
      m.at(j, j) = DoubleDouble(1);
    } else if (j == poles + 1) {
      m.at(poles, j) = shift, m.at(j, j) = slope;
    } else {
      for (std::size_t k = poles; k <= j; ++k) {
        DoubleDouble sum = shift * m.at(k, j - 1);
        if (k > poles) sum += slope * m.at(k - 1, j - 1);
        m.at(k, j) = sum + sum - m.at(k, j - 2);
      }
    }
  }
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

PowerFit::PowerFit(const Column& u, std::span<const double> y, DoubleDouble ySquares, int lowestPower,
                   std::size_t columns)
    : lowest(lowestPower), columns_(columns) {
  const Range extent = range(u);
  middle = extent.low + (extent.high - extent.low) / 2;
  if (extent.high > extent.low) stretch = 2 / (extent.high - extent.low);
  if (!std::isfinite(stretch)) stretch = 1;
  Factor factor = choleskyFactor(moments(u, y, lowest, middle, stretch, columns - 1), ySquares);
  const bool isExactFit = factor.rank == columns &&
                          !(factor.residualSquares[0].hi > leastResidualShare * ySquares.hi);
  if (factor.rank < columns || isExactFit) {
    hasPole = lowest < 0 && factor.rank < columns;
    factor = orthogonalFactor(exactColumns(*this, u, columns), exactColumn(y),
                              lowest == 0 ? dependenceOfPolynomials : dependenceOfExactColumns);
  } else {
    fillResidualSquares(factor, factor.residualSquares[0]);
  }
  const std::size_t poles = hasPole ? static_cast<std::size_t>(-lowest) : 0;
  fit = makeNestedFit(std::move(factor), powersOfColumns(columns, poles, middle, stretch));
}

void PowerFit::columnsAt(double u, std::span<double> columns) const { fillColumns(*this, u, columns); }

}  // namespace pelmora::solver
