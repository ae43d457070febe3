// An expanded uncertainty for people.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/budget.h>

#include <optional>
#include <string>

namespace pelmora::report {

// U in per cent of its value, rounded as a certificate prints it; "-" if there is none.
[[nodiscard]] std::string expandedPercentText(const std::optional<calibration::Budget>& budget);

}  // namespace pelmora::report
