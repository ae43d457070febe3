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

// The budget of the value in another unit, of which `factor` make one of its own.
[[nodiscard]] calibration::Budget scaled(calibration::Budget budget, double factor);

[[nodiscard]] nlohmann::json monteCarloJson(const calibration::MonteCarloCheck& check,
                                            double scale = 1);

// U, rounded to two digits; "-" if there is none.
[[nodiscard]] std::string expandedText(const std::optional<calibration::Budget>& budget,
                                       double scale = 1);

}  // namespace pelmora::cli
