// Direct least squares for equations that are linear in their parameters.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/equations/known_equations.h"
#include "solver/linear/series.h"
#include "solver/linear/solution.h"

namespace pelmora::solver {

// Polynomials in one function of x go by PowerFit, which equations over the same series share;
// everything else by orthogonal factorisation of its terms.
//
// R2 is about the mean where one term is a constant, about zero (and the adjusted R2 with n in
// place of n - 1) where none is: a line through the origin explains y, not its deviation from the
// mean.
//
// Shape:  series of n points, equation with a form and p parameters, n > p >= 1.
// Errors: NoSolution for a term that is not finite at some point and for parameters that the data
//         cannot tell apart.
[[nodiscard]] Solution fitLinear(const KnownEquation& equation, Series& series);

}  // namespace pelmora::solver
