// SPDX-License-Identifier: MIT
#include "base/readable_number.h"
#include "calibration/evaluation/fitted_curve_body.h"
#include "uncertainty/rounding.h"

#include <algorithm>
#include <cmath>

namespace pelmora::calibration {

Budget publicBudget(const uncertainty::Budget& budget, bool hasStand) {
  Budget made;
  made.stand = budget.stand;
  made.hasStand = hasStand;
  made.value = budget.value;
  made.standardUncertainty = budget.standardUncertainty;
  made.degreesOfFreedom = budget.degreesOfFreedom;
  made.probability = budget.probability;
  made.coverageFactor = budget.coverageFactor;
  made.expanded = budget.expanded;
  made.expandedPercent = budget.expandedPercent;
  made.cmcPercent = budget.cmcPercent;
  made.isCmc = budget.isCmc;
  made.isConvolved = budget.isConvolved;
  for (const uncertainty::BudgetRow& row : budget.rows) {
    made.rows.push_back({std::string(causeName(row.cause)), row.label, row.standardUncertainty,
                         std::string(row.unit), std::string(distributionName(row.distribution)),
                         row.evaluation == uncertainty::Evaluation::a ? 'A' : 'B',
                         row.degreesOfFreedom, row.sensitivity, row.contribution});
  }
  return made;
}

double Budget::roundedExpanded() const {
  if (!(expanded > 0)) return 0;
  return uncertainty::roundedUncertainty(expanded, 2, std::abs(value) * cmcPercent / 100);
}

double Budget::roundedPercent() const {
  if (!(expandedPercent > 0)) return 0;
  return uncertainty::roundedUncertainty(expandedPercent, 2, cmcPercent);
}

std::string Budget::contents() const { return contentsOf({this, 1}); }

std::string contentsOf(std::span<const Budget> budgets) {
  if (budgets.empty()) return {};
  const auto [least, most] = std::ranges::minmax_element(budgets, {}, &Budget::coverageFactor);
  const std::string low = fixedText(least->coverageFactor, 2),
                    high = fixedText(most->coverageFactor, 2);
  const Budget& of = budgets.front();
  const std::string start = "U (k = " + low + (low == high ? "" : " to " + high) + ", " +
                            significantText(100 * of.probability, 4) + " %) contains ";
  const std::string ofStand = std::string(of.isOfPoint ? "the scatter of one point" : "the curve") +
                              " and everything that the stand states" +
                              (of.stand.empty() ? "" : " (" + of.stand + ")");
  const std::string noStand = "no uncertainty of the stand is stored with the calibration";
  if (of.isOfFlow) {
    return start +
           (of.hasStand ? ofStand : "the scatter of the points about the curve; " + noStand) +
           ". " +
           (of.hasInstruments ? "It also contains the instruments in service."
                              : "It contains nothing of the instruments in service.");
  }
  if (!of.hasStand) {
    return start + "the scatter of " + (of.isOfPoint ? "one point" : "the points") +
           " about the curve alone: " + noStand + ".";
  }
  if (std::ranges::none_of(budgets, &Budget::isCmc)) return start + ofStand + ".";
  return start + ofStand +
         (std::ranges::all_of(budgets, &Budget::isCmc)
              ? "; it is the laboratory's CMC, below which no uncertainty is stated."
              : "; where that is less than the laboratory's CMC, U is the CMC.");
}

}  // namespace pelmora::calibration
