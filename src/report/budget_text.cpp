// SPDX-License-Identifier: MIT
#include "report/budget_text.h"

#include "report/printed_values.h"

namespace pelmora::report {

std::string expandedPercentText(const std::optional<calibration::Budget>& budget) {
  return budget ? printedUncertainty(budget->roundedPercent()) : "-";
}

}  // namespace pelmora::report
