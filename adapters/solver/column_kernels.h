// The loops over all points: what the time of a fit goes into.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/solver/nested_fit.h"

namespace pelmora::solver {

// Sum of a(k) b(k).
[[nodiscard]] DoubleDouble dot(const Column& a, const Column& b);
// a(k) = a(k) * factor.
void scale(Column& a, DoubleDouble factor);
// a(k) = a(k) - factor * b(k).
void subtractMultiple(Column& a, DoubleDouble factor, const Column& b);
// Natural logarithms; NaN and -infinity outside the domain.
[[nodiscard]] Column logarithms(std::span<const double> x);

// Sums for a polynomial over t = (u - middle) * stretch, with T(m) the Chebyshev polynomials:
// squares[m] = sum of w^2 T(m), products[j] = sum of w y T(j).
struct Moments {
  std::vector<DoubleDouble> squares, products;
};
// Shape: u, w, y of n values; w empty for weights of 1. squares 0 .. 2 degree, products 0 .. degree.
[[nodiscard]] Moments moments(const Column& u, const Column& w, std::span<const double> y,
                              double middle, double stretch, std::size_t degree);

}  // namespace pelmora::solver
