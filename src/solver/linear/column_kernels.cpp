// SPDX-License-Identifier: MIT
#include "solver/linear/column_kernels.h"

#include "solver/arithmetic/double_double_functions.h"

#include <array>

namespace pelmora::solver {
namespace {

Pair pairOf(Column& a) { return {a.hi.data(), a.lo.data()}; }
ConstPair pairOf(const Column& a) { return {a.hi.data(), a.lo.data()}; }

LogTable makeLogTable() {
  LogTable table;
  for (std::size_t i = 0; i < LogTable::size; ++i) {
    // Nine bits are near enough. Exactly 1 and 1/2 at the ends, where x is near 1 and its logarithm
    // must not be a difference of larger ones.
    const double middle = 1 + (static_cast<double>(i) + 0.5) / 128;
    double inverse = std::nearbyint(512 / middle) / 512;
    if (i == 0) inverse = 1;
    if (i + 1 == LogTable::size) inverse = 0.5;
    table.inverse[i] = inverse;
    const DoubleDouble logarithm = inverse == 0.5 ? dd_ln2 : -log(DoubleDouble(inverse));
    table.high[i] = logarithm.hi;
    table.low[i] = logarithm.lo;
  }
  table.ln2 = dd_ln2;
  for (int k = 0; k < 4; ++k) table.series[k] = DoubleDouble(1) / DoubleDouble(7 - 2 * k);
  return table;
}

}  // namespace

DoubleDouble dot(const Column& a, const Column& b) {
  return pointKernels().dot(pairOf(a), pairOf(b), a.size());
}
void scale(Column& a, DoubleDouble factor) { pointKernels().scale(pairOf(a), factor, a.size()); }
void subtractMultiple(Column& a, DoubleDouble factor, const Column& b) {
  pointKernels().subtractMultiple(pairOf(a), factor, pairOf(b), a.size());
}
DoubleDouble sum(std::span<const double> y) { return pointKernels().sum(y.data(), y.size()); }
DoubleDouble squaresAbout(std::span<const double> y, DoubleDouble middle) {
  return pointKernels().squaresAbout(y.data(), middle, y.size());
}
Range range(const Column& a) { return pointKernels().range(pairOf(a), a.size()); }

const LogTable& logTable() {
  static const LogTable table = makeLogTable();
  return table;
}

Column logarithms(std::span<const double> x) {
  Column result(x.size());
  pointKernels().logarithms(x.data(), pairOf(result), x.size(), logTable());
  for (std::size_t k = 0; k < x.size(); ++k) {
    if (!std::isnormal(x[k]) || x[k] < 0) result.set(k, log(DoubleDouble(x[k])));
  }
  return result;
}

Moments moments(const Column& u, std::span<const double> y, const PowerScale& by,
                std::size_t degree) {
  static constexpr std::array<double, 8> ones{1, 1, 1, 1, 1, 1, 1, 1};
  Moments sums;
  sums.squares.resize(2 * degree + 1);
  sums.products.resize(degree + 1);
  int exponent = 0;
  std::frexp(by.largestSquare, &exponent);
  MomentTask task;
  task.u = pairOf(u);
  task.y = y.data();
  task.ones = ones.data();
  task.lowest = by.lowest;
  task.middle = by.middle;
  task.stretch = by.stretch;
  task.scale = std::ldexp(1.0, -exponent);
  task.degree = degree;
  task.n = u.size();
  pointKernels().moments(task, sums.squares.data(), sums.products.data());
  return sums;
}

}  // namespace pelmora::solver
