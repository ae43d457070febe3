// The equations of a fit, from best to worst.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/choice.h>
#include <pelmora/export.h>
#include <pelmora/fit_outcome.h>

#include <vector>

namespace pelmora::calibration {

struct RankedEquation {
  int rank = 0;  // from 1
  EquationOutcome outcome;
};

// In this order: the chosen equation; those that passed, by descending adjusted R2, or by AICc in a
// trusted fit; those that a test rejected, by descending adjusted R2; those without a solution;
// those not tried. Ties stay in the order in which the fit tries them, starting from the end of the
// catalogue.
[[nodiscard]] PELMORA_API std::vector<RankedEquation> ranking(const FitOutcome& outcome,
                                                              Choice choice = Choice::adjustedR2);

}  // namespace pelmora::calibration
