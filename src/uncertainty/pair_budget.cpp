// SPDX-License-Identifier: MIT
#include "uncertainty/pair_budget.h"

#include "uncertainty/refusal.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace pelmora::uncertainty {
namespace {

double correlationOf(const BudgetRow& row, SharedBy shared) {
  return shared == SharedBy::rotors ? row.betweenRotors : row.betweenCalibrations;
}

// `first` with the part of `second` in it.
BudgetRow joined(const BudgetRow& first, const BudgetRow& second, double correlation) {
  const double a = first.contribution, b = second.contribution;
  BudgetRow row = first;
  if (correlation == 1) {
    row.contribution = a + b;
    row.degreesOfFreedom = std::min(first.degreesOfFreedom, second.degreesOfFreedom);
  } else {
    row.contribution = std::sqrt(std::max(0.0, a * a + b * b + 2 * correlation * a * b));
    row.distribution = Distribution::normal;  // what a sum of two independent errors comes close to
    const std::array parts{a, b}, degrees{first.degreesOfFreedom, second.degreesOfFreedom};
    row.degreesOfFreedom =
        correlation == 0 ? effectiveDegrees(parts, degrees) : std::min(degrees[0], degrees[1]);
  }
  row.sensitivity = row.standardUncertainty > 0 ? row.contribution / row.standardUncertainty : 0;
  return row;
}

std::vector<BudgetRow> weighedRows(const Weighed& weighed) {
  std::vector<BudgetRow> rows = weighed.budget->rows;
  for (BudgetRow& row : rows) {
    row.contribution *= weighed.sensitivity;
    row.sensitivity *= weighed.sensitivity;
  }
  return rows;
}

}  // namespace

Budget pairBudget(double value, Weighed first, Weighed second, SharedBy shared) {
  if (first.budget->probability != second.budget->probability) {
    refuse("the two budgets are for different probabilities", "expand both for the same one");
  }
  const bool isOneStand = first.budget->stand == second.budget->stand;
  Budget budget;
  budget.stand =
      isOneStand ? first.budget->stand : first.budget->stand + " and " + second.budget->stand;
  budget.value = value;
  budget.rows = weighedRows(first);
  for (const BudgetRow& row : weighedRows(second)) {
    const auto same = std::find_if(budget.rows.begin(), budget.rows.end(), [&](const auto& each) {
      return each.cause == row.cause && each.label == row.label;
    });
    if (same == budget.rows.end()) {
      budget.rows.push_back(row);
    } else {
      *same = joined(*same, row, isOneStand ? correlationOf(row, shared) : 0.0);
    }
  }
  combineRows(budget, first.budget->probability);
  return budget;
}

}  // namespace pelmora::uncertainty
