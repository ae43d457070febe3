// The equations of a fit from the best to the worst.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

namespace pelmora::report {

// The chosen one; what passed, by falling adjusted R2; what a test rejected, likewise; what has no
// solution; what was not tried. Equals stay in the order in which the fit tries them, from the
// catalogue's last.
[[nodiscard]] std::vector<RankedEquation> ranking(const FitOutcome& outcome);

}  // namespace pelmora::report
