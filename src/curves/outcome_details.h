// What the outcome of a fit says beyond the report.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/fit_engine.h>
#include <pelmora/fit_outcome.h>

#include <span>

namespace pelmora {

// Statistics, parameters, covariance and information criteria of a solution. With n observations
// and k the parameters and the variance: AICc = n ln(RSS/n) + 2k + 2k(k+1)/(n-k-1), BIC = n
// ln(RSS/n) + k ln n; absent if RSS is 0 or the divisor not positive.
//
// Source: Burnham and Anderson, Model Selection and Multimodel Inference, 2nd ed., 2.3 and 6.4.
void describeSolution(const FitModel& model, EquationOutcome& outcome);

// Half widths at each predicted x: t times the standard error of the curve, and with the residual
// variance added to its square for a further measurement; t of 95 % with n - p degrees of freedom.
void describeBands(const FitModel& model, std::span<const double> predictedX, FitOutcome& outcome);

}  // namespace pelmora
