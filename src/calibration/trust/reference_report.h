// The reference curve as one more outcome of a fit, with a report in the form that hosts read.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/reference/reference_curve.h"

#include <pelmora/calibration/fit.h>

#include <optional>
#include <vector>

namespace pelmora::calibration {

// Adds the reference curve to the outcome, and makes it the fit's curve and report if no equation
// was chosen.
//
// table: Strouhal at the rows of fit.trust->table; nothing if the curve cannot be stored, then
//        fit.trouble says why.
void addReferenceCurve(Fit& fit, const solver::reference::ReferenceCurve& reference,
                       const std::optional<std::vector<double>>& table);

}  // namespace pelmora::calibration
