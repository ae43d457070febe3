// Small least-squares problems in plain doubles, for the steps of the nonlinear search.
// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace pelmora::solver {

// Reduces the columns and `y` to the upper triangle in place: afterwards columns[j][i], i <= j, is
// R and y is Q'y. Shape: p columns of n >= p values each, y of n values.
void triangularise(std::vector<std::vector<double>>& columns, std::vector<double>& y);

// Solves R s = y for the columns first .. last-1 of a triangle, where directions whose diagonal is
// below `tolerance` times the length of its column get 0.
[[nodiscard]] std::vector<double> backSubstitute(const std::vector<std::vector<double>>& columns,
                                                 const std::vector<double>& y, std::size_t first,
                                                 std::size_t last, double tolerance);

// Length of values first .. end.
[[nodiscard]] double lengthOf(const std::vector<double>& values, std::size_t first = 0);

}  // namespace pelmora::solver
