// SPDX-License-Identifier: MIT
#include "report/budget_text.h"

#include "base/readable_number.h"

namespace pelmora::report {

std::string expandedPercentText(const std::optional<calibration::Budget>& budget) {
  // Rounded already: printed as it is.
  constexpr int allDigits = 12;
  return budget ? significantText(budget->roundedPercent(), allDigits) : "-";
}

}  // namespace pelmora::report
