// Stated uncertainties as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/stated_uncertainty.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>

namespace pelmora::report {

// Adds expandedUncertainty, expandedUncertaintyPercent, coverageFactor and probability to a value;
// null without one. U is rounded as the page prints it.
void addUncertainty(nlohmann::json& value, const std::optional<StatedUncertainty>& uncertainty);

// With full digits: the budgets.
[[nodiscard]] nlohmann::json uncertaintyJson(const UncertaintyStatement& statement,
                                             const std::optional<UncertaintySpan>& ofPoints);

}  // namespace pelmora::report
