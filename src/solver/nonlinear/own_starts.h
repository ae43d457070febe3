// Starts of the nonlinear search where the host gives none.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/equations/expression.h"

#include <span>
#include <vector>

namespace pelmora::solver {

// Tries many parameter sets of the sizes that data and form of the equation suggest (places within
// the range of x, shares of it, their powers), solves each for the parameters that enter linearly,
// takes the best a few steps further and returns the `count` best valleys. The same numbers for the
// same input.
[[nodiscard]] std::vector<std::vector<double>> ownStarts(const Expression& expression,
                                                         std::span<const double> x,
                                                         std::span<const double> y,
                                                         std::size_t count);

}  // namespace pelmora::solver
