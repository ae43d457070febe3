// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/budget_output.h"

#include "apps/pelmora/output/text_table.h"
#include "report/printed_values.h"

#include <nlohmann/json.hpp>

#include <algorithm>
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
  TextTable table(
      {{"Cause"}, {"u", right}, {"Distribution"}, {"Type"}, {"DoF", right}, {"Contrib. %", right}});
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
  const std::string factor = "k = " + report::printedCoverageFactor(budget.coverageFactor);
  return table.text() + "U = " + expandedText(budget) + " (" +
         report::printedUncertainty(budget.roundedPercent()) + " %" +
         (budget.isCmc ? "): the laboratory's CMC; " + factor : "), " + factor) + "\n";
}

Budget scaled(Budget budget, double factor) {
  budget.value *= factor;
  budget.standardUncertainty *= factor;
  budget.expanded *= factor;
  for (BudgetRow& row : budget.rows) {
    if (row.unit.empty())
      row.standardUncertainty *= factor;
    else
      row.sensitivity *= factor;
    row.contribution *= factor;
  }
  return budget;
}

nlohmann::json monteCarloJson(const calibration::MonteCarloCheck& check, double scale) {
  return {{"trials", check.trials},
          {"standardDeviation", check.standardDeviation * scale},
          {"halfWidth", check.halfWidth() * scale},
          {"isStable", check.isStable}};
}

std::string expandedText(const std::optional<Budget>& budget, double scale) {
  if (!budget) return "-";
  return report::printedUncertainty(budget->roundedExpanded() * scale);
}

}  // namespace pelmora::cli
