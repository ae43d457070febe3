// Uncertainty budgets for people and for programs.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/budget.h>

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>

namespace pelmora::cli {

// The rows as a table: cause, standard uncertainty, distribution, type, degrees of freedom,
// contribution in per cent of the value.
[[nodiscard]] std::string budgetText(const calibration::Budget& budget);

// Adds expandedUncertainty, coverageFactor, probability and the rows as `budget` to a value.
// Without a budget they are null. Everything in the unit of the value is multiplied by `scale`.
//
// of: the value that percentages refer to, if it is not the budget's own.
void addBudget(nlohmann::json& value, const std::optional<calibration::Budget>& budget,
               double scale = 1, const std::optional<double>& of = {});

[[nodiscard]] nlohmann::json monteCarloJson(const calibration::MonteCarloCheck& check,
                                            double scale = 1);

// U, rounded to two digits; "-" if there is none.
[[nodiscard]] std::string expandedText(const std::optional<calibration::Budget>& budget,
                                       double scale = 1);

}  // namespace pelmora::cli
