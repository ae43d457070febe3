// SPDX-License-Identifier: MIT
#include "adapters/solver/column_kernels.h"

#include "adapters/solver/double_double_functions.h"

namespace pelmora::solver {

DoubleDouble dot(const Column& a, const Column& b) {
  DoubleDouble sum;
  for (std::size_t k = 0; k < a.size(); ++k) sum += a.at(k) * b.at(k);
  return sum;
}

void scale(Column& a, DoubleDouble factor) {
  for (std::size_t k = 0; k < a.size(); ++k) a.set(k, a.at(k) * factor);
}

void subtractMultiple(Column& a, DoubleDouble factor, const Column& b) {
  for (std::size_t k = 0; k < a.size(); ++k) a.set(k, a.at(k) - factor * b.at(k));
}

Column logarithms(std::span<const double> x) {
  Column result(x.size());
  for (std::size_t k = 0; k < x.size(); ++k) result.set(k, log(DoubleDouble(x[k])));
  return result;
}

Moments moments(const Column& u, const Column& w, std::span<const double> y, double middle,
                double stretch, std::size_t degree) {
  Moments sums;
  sums.squares.resize(2 * degree + 1);
  sums.products.resize(degree + 1);
  for (std::size_t k = 0; k < u.size(); ++k) {
    const DoubleDouble weight = w.size() == 0 ? DoubleDouble(1) : w.at(k);
    const DoubleDouble t = (u.at(k) - DoubleDouble(middle)) * DoubleDouble(stretch);
    const DoubleDouble twice = t + t, square = weight * weight, product = weight * DoubleDouble(y[k]);
    DoubleDouble before = t, now(1);  // T(-1) = T(1) = t
    for (std::size_t m = 0; m <= 2 * degree; ++m) {
      sums.squares[m] += square * now;
      if (m <= degree) sums.products[m] += product * now;
      const DoubleDouble after = twice * now - before;
      before = now;
      now = after;
    }
  }
  return sums;
}

}  // namespace pelmora::solver
