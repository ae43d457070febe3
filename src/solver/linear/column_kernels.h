// Sums and transformations over all points of a series: what the time of a fit goes into.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/linear/nested_fit.h"
#include "solver/arithmetic/point_kernels.h"

#include <span>

namespace pelmora::solver {

// Sum of a(k) b(k).
[[nodiscard]] DoubleDouble dot(const Column& a, const Column& b);
// a(k) = a(k) * factor.
void scale(Column& a, DoubleDouble factor);
// a(k) = a(k) - factor * b(k).
void subtractMultiple(Column& a, DoubleDouble factor, const Column& b);
[[nodiscard]] DoubleDouble sum(std::span<const double> y);
// Sum of (y(k) - middle)^2.
[[nodiscard]] DoubleDouble squaresAbout(std::span<const double> y, DoubleDouble middle);
// Smallest and largest value; a has at least one.
[[nodiscard]] Range range(const Column& a);
[[nodiscard]] const LogTable& logTable();
// Natural logarithms; NaN and -infinity outside the domain.
[[nodiscard]] Column logarithms(std::span<const double> x);

// A polynomial over t = (u - middle) * stretch, which runs from -1 to 1, times w = u^lowest.
struct PowerScale {
  int lowest = 0;
  double middle = 0, stretch = 1;
  double largestSquare = 1;  // of w over the points, but for rounding; a normal number
};
// With T(m) the Chebyshev polynomials: squares[m] = sum of w^2 T(m), products[j] = sum of w y T(j),
// to 28 digits of n largestSquare and of largestSquare times the sum of |y / w|.
struct Moments {
  std::vector<DoubleDouble> squares, products;
};
// Shape: u, y of n values. squares 0 .. 2 degree, products 0 .. degree; degree <= highestDegree.
[[nodiscard]] Moments moments(const Column& u, std::span<const double> y, const PowerScale& by,
                              std::size_t degree);
inline constexpr std::size_t highestDegree = MomentTask::highestDegree;

}  // namespace pelmora::solver
