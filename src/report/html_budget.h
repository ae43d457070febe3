// The uncertainty of a series on its page.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <string>

namespace pelmora::report {

// What U contains, and the budget at the ends and in the middle of the curve; empty without a
// stored curve.
[[nodiscard]] std::string htmlBudget(const SeriesReport& series);

}  // namespace pelmora::report
