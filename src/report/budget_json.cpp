// SPDX-License-Identifier: MIT
#include "report/budget_json.h"

#include "report/json_null.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <string>

namespace pelmora::report {
namespace {

using calibration::Budget;
using calibration::BudgetRow;

}  // namespace

void addBudget(nlohmann::json& value, const std::optional<Budget>& budget, double scale,
               const std::optional<double>& of) {
  if (!budget) {
    for (const char* name :
         {"expandedUncertainty", "expandedUncertaintyPercent", "standardUncertainty",
          "degreesOfFreedom", "coverageFactor", "probability", "budget"}) {
      value[name] = nullptr;
    }
    return;
  }
  value["expandedUncertainty"] = budget->expanded * scale;
  value["expandedUncertaintyPercent"] =
      of ? 100 * budget->expanded * scale / std::abs(*of) : budget->expandedPercent;
  value["standardUncertainty"] = budget->standardUncertainty * scale;
  value["degreesOfFreedom"] = finiteOrNull(budget->degreesOfFreedom);
  value["coverageFactor"] = budget->coverageFactor;
  value["probability"] = budget->probability;
  value["isCmc"] = budget->isCmc;
  value["contains"] = budget->contents();
  nlohmann::json rows = nlohmann::json::array();
  for (const BudgetRow& row : budget->rows) {
    rows.push_back({{"cause", row.cause},
                    {"label", row.label},
                    {"standardUncertainty", row.standardUncertainty},
                    {"unit", row.unit},
                    {"distribution", row.distribution},
                    {"type", std::string(1, row.type)},
                    {"degreesOfFreedom", finiteOrNull(row.degreesOfFreedom)},
                    {"sensitivity", row.sensitivity * scale},
                    {"contribution", row.contribution * scale}});
  }
  value["budget"] = rows;
}

}  // namespace pelmora::report
