// The equations that were tried for a series, on its page.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <string>

namespace pelmora::report {

// The ranking, and the parameters of the chosen equation with their correlations.
[[nodiscard]] std::string htmlEquations(const SeriesReport& series);

}  // namespace pelmora::report
