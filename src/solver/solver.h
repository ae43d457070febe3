// The product's own curve-fitting engine.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/fit_engine.h>

#include <memory>

namespace pelmora {

// Equations over x with parameters a, b, c ...; those that are linear in their parameters are
// solved directly, the others by a trust-region search. Models of one engine share what their
// equations have in common over the same points, so one engine serves one run best; an engine and
// its models belong to one thread.
//
// A nonlinear solution is a minimum of the residual sum of squares: proved to be one, by Newton's
// method in double-double arithmetic, and the lowest one that the starts led to, the host's and the
// engine's own. A lower one elsewhere cannot be ruled out; start values help. R2 of a linear
// equation without a constant term is about zero.
//
// No solution, with a reason in words: an expression that cannot be read, fewer points than
// parameters + 1 (standard errors need a degree of freedom), values that are not finite, parameters
// that the data cannot tell apart, no convergence.
[[nodiscard]] std::unique_ptr<FitEngine> createSolver();

}  // namespace pelmora
