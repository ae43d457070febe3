// What would help if a fit found no curve, in the words of the command line's options.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/trouble.h"

#include <pelmora/calibration/fit.h>

#include <string>

namespace pelmora::cli {

// What would make this equation pass, or what to try; empty if nothing is known.
[[nodiscard]] std::string advice(const calibration::Fit& fit, const EquationOutcome& equation);

// For the one error line: the outcome of the equation that came nearest, and its remedy.
[[nodiscard]] std::string shortReason(const calibration::Fit& fit);
[[nodiscard]] std::string shortAdvice(const calibration::Fit& fit);

// Of a fit without a passing equation.
[[nodiscard]] Trouble noCurveTrouble(const calibration::Fit& fit);

}  // namespace pelmora::cli
