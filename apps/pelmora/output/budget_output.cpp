// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/budget_output.h"

#include "apps/pelmora/output/text_table.h"
#include "report/json_null.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace pelmora::cli {
namespace {

using calibration::Budget;
using calibration::BudgetRow;

std::string degreesText(double degrees) {
  return std::isfinite(degrees) ? significantText(std::floor(degrees), 6) : "inf";
}

}  // namespace

std::string budgetText(const Budget& budget) {
  const auto right = TextAlign::right;
  TextTable table({{"Cause"},
                   {"u", right},
                   {"Distribution"},
                   {"Type"},
                   {"DoF", right},
                   {"Contribution %", right}});
  const double size = std::abs(budget.value) / 100;
  for (const BudgetRow& row : budget.rows) {
    table.addRow(
        {row.cause + (row.label.empty() ? "" : ": " + row.label),
         significantText(row.standardUncertainty, 3) + (row.unit.empty() ? "" : " " + row.unit),
         row.distribution, std::string(1, row.type), degreesText(row.degreesOfFreedom),
         significantText(std::abs(row.contribution) / size, 3)});
  }
  table.addRow({"combined", significantText(budget.standardUncertainty, 3), "", "",
                degreesText(budget.degreesOfFreedom),
                significantText(budget.standardUncertainty / size, 3)});
  return table.text();
}

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
  value["degreesOfFreedom"] = report::finiteOrNull(budget->degreesOfFreedom);
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
                    {"degreesOfFreedom", report::finiteOrNull(row.degreesOfFreedom)},
                    {"sensitivity", row.sensitivity * scale},
                    {"contribution", row.contribution * scale}});
  }
  value["budget"] = rows;
}

nlohmann::json monteCarloJson(const calibration::MonteCarloCheck& check, double scale) {
  return {{"trials", check.trials},
          {"standardDeviation", check.standardDeviation * scale},
          {"halfWidth", check.halfWidth() * scale},
          {"isStable", check.isStable}};
}

std::string expandedText(const std::optional<Budget>& budget, double scale) {
  if (!budget) return "-";
  return significantText(budget->roundedExpanded() * scale, scale == 1 ? 12 : 2);
}

}  // namespace pelmora::cli
