// SPDX-License-Identifier: MIT
#include "base/readable_number.h"
#include "calibration/evaluation/fitted_curve_body.h"
#include "uncertainty/rounding.h"

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

std::string Budget::contents() const {
  const std::string start = "U (k = " + fixedText(coverageFactor, 2) + ", " +
                            significantText(100 * probability, 4) + " %) contains ";
  const std::string ofStand = std::string(isOfPoint ? "the scatter of one point" : "the curve") +
                              " and everything that the stand states" +
                              (stand.empty() ? "" : " (" + stand + ")");
  const std::string noStand = "no uncertainty of the stand is stored with the calibration";
  if (isOfFlow) {
    return start + (hasStand ? ofStand : "the scatter of the points about the curve; " + noStand) +
           ". " +
           (hasInstruments ? "It also contains the instruments in service."
                           : "It contains nothing of the instruments in service.");
  }
  if (!hasStand) {
    return start + "the scatter of " + (isOfPoint ? "one point" : "the points") +
           " about the curve alone: " + noStand + ".";
  }
  return start + ofStand +
         (isCmc ? "; it is the laboratory's CMC, below which no uncertainty is stated." : ".");
}

}  // namespace pelmora::calibration
