// What a user asks of a fit, with the equations of a file.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/options/fit_options.h"

#include <pelmora/calibration/fit.h>

#include <string>

namespace pelmora::cli {

// source: a file, or a folder that contains "equations.txt" ("ratio equations.txt" if `ratio`);
// empty: the built-in equations.
//
// Errors: Trouble badInput for a file that cannot be read; BadData if it holds no equation.
[[nodiscard]] calibration::EquationList readEquations(const std::string& source, bool ratio);

// Options that are not given keep the defaults of FitSettings.
//
// Errors: the same; Trouble usage if the options name an unknown equation or leave none to try.
[[nodiscard]] calibration::FitSettings fitSettings(const FitTests& tests, const FitChoices& choices,
                                                   bool ratio);

}  // namespace pelmora::cli
