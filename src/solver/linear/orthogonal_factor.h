// Orthogonal factorisation of any columns in double-double arithmetic.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/linear/nested_fit.h"

#include <vector>

namespace pelmora::solver {

// Modified Gram-Schmidt on the columns with `y` as the last one, which makes it as stable as
// Householder's method for least squares. A column counts as dependent where less than `tolerance`
// of its length is left beside the columns before it; the fits end there.
//
// Shape:  columns of n values each, y of n values; all finite.
// Source: Bjorck, Numerical Methods for Least Squares Problems, 2.4.
[[nodiscard]] Factor orthogonalFactor(std::vector<Column> columns, Column y, double tolerance);

// Rounding of double-double columns stays far below this, true dependence far above.
inline constexpr double dependenceOfExactColumns = 1e-22;

}  // namespace pelmora::solver
