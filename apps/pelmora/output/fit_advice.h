// What helps if a fit finds no curve, or one with warnings, and the commands that do it.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/output/suggested_fit.h"
#include "apps/pelmora/trouble.h"

#include <pelmora/calibration/advice.h>

#include <string>
#include <vector>

namespace pelmora::cli {

struct AdvisedStep {
  calibration::Advice advice;
  std::vector<std::string> commands;  // to type; empty if no command does it
};

// The most important first.
//
// call: the fit as it was asked for.
[[nodiscard]] std::vector<AdvisedStep> stepsFor(const calibration::Fit& fit, const FitCall& call);
// A paragraph for each, below a headline; empty if there are none.
[[nodiscard]] std::string stepLines(const calibration::Fit& fit,
                                    const std::vector<AdvisedStep>& steps);

// What an equation without a solution needs; empty if nothing is known.
[[nodiscard]] std::string solutionAdvice(const calibration::Fit& fit,
                                         const EquationOutcome& equation);

// Of a fit without a passing equation.
[[nodiscard]] Trouble noCurveTrouble(const calibration::Fit& fit);
// Of a curve with warnings, where no such curve may be stored.
[[nodiscard]] Trouble warningTrouble(const calibration::Fit& fit);

}  // namespace pelmora::cli
