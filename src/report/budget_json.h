// An uncertainty budget as JSON: every command that writes one names its members alike.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/budget.h>

#include <nlohmann/json_fwd.hpp>

#include <optional>

namespace pelmora::report {

// Adds expandedUncertainty, coverageFactor, probability and the rows as `budget` to a value.
// Without a budget they are null. Everything in the unit of the value is multiplied by `scale`.
//
// of: the value that percentages refer to, if it is not the budget's own.
void addBudget(nlohmann::json& value, const std::optional<calibration::Budget>& budget,
               double scale = 1, const std::optional<double>& of = {});

}  // namespace pelmora::report
