// The equations of a fit from the best to the worst.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>
#include <pelmora/fit_outcome.h>

#include <vector>

namespace pelmora::calibration {

struct RankedEquation {
  int rank = 0;  // from 1
  EquationOutcome outcome;
};

// The chosen one; what passed, by falling adjusted R2; what a test rejected, likewise; what has no
// solution; what was not tried. Equals stay in the order in which the fit tries them, from the
// catalogue's last.
[[nodiscard]] PELMORA_API std::vector<RankedEquation> ranking(const FitOutcome& outcome);

}  // namespace pelmora::calibration
