// SPDX-License-Identifier: MIT
#include "flow/flow_budget.h"

#include "uncertainty/pair_budget.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace pelmora::flow {
namespace {

using uncertainty::Budget;
using uncertainty::BudgetRow;
using uncertainty::Cause;
using uncertainty::Component;

// d ln q by one unit of the component's size.
double sensitivityOf(const Component& component, double steepness, const Service& service) {
  const double linear = service.expansion.linear;
  switch (component.cause) {
    case Cause::frequency: return 1 - steepness;
    case Cause::viscosity: return steepness;
    case Cause::temperature:
      return 3 * linear / service.expansion.strouhalFactor(service.temperatureF) -
             steepness * (2 * linear / service.expansion.roshkoFactor(service.temperatureF) -
                          component.viscosityChange);
    case Cause::flow:
      throw calibration::BadData({"a meter in service has no reference flow", "",
                                  "remove [flow] from the file of its instruments"});
    case Cause::fit:
    case Cause::repeatability:
    case Cause::reproducibility:
    case Cause::model:
    case Cause::reading: break;
  }
  return 1;
}

BudgetRow serviceRow(const Component& component, double contribution) {
  BudgetRow row{component.cause,
                component.label.empty() ? "service" : "service: " + component.label,
                component.standard.value,
                component.standard.unit->symbol,
                component.distribution,
                component.evaluation,
                component.degreesOfFreedom};
  row.contribution = contribution;
  if (row.standardUncertainty > 0) row.sensitivity = contribution / row.standardUncertainty;
  return row;
}

double steepnessOf(const CalibratedStrouhal& strouhal) {
  return strouhal.steepness / strouhal.calibration->value;
}

// Of the errors of one cause in the two rotors.
double correlationOf(const Component& component) {
  const bool isOfFluid =
      component.cause == Cause::viscosity || component.cause == Cause::temperature;
  return isOfFluid ? 1 : component.betweenRotors;
}

}  // namespace

Budget flowBudget(double flow, const CalibratedStrouhal& strouhal,
                  const uncertainty::StandUncertainty& instruments,
                  const uncertainty::OperatingPoint& at, const Service& service) {
  const Budget& calibration = *strouhal.calibration;
  Budget budget;
  budget.stand = calibration.stand;
  budget.value = flow;
  const double toFlow = -flow / calibration.value;
  for (BudgetRow row : calibration.rows) {
    row.label = row.label.empty() ? "calibration" : "calibration: " + row.label;
    row.contribution *= toFlow;
    row.sensitivity *= toFlow;
    budget.rows.push_back(row);
  }
  if (calibration.isCmc) {
    const double stated = calibration.expanded / calibration.coverageFactor;
    const double found = calibration.standardUncertainty;
    BudgetRow row;
    row.cause = Cause::model;
    row.label = "calibration: to the CMC";
    row.standardUncertainty = std::sqrt(stated * stated - found * found);
    row.sensitivity = toFlow;
    row.contribution = toFlow * row.standardUncertainty;
    budget.rows.push_back(row);
  }
  for (const Component& each : instruments.components) {
    const double share =
        uncertainty::componentSize(each, at) * sensitivityOf(each, steepnessOf(strouhal), service);
    budget.rows.push_back(serviceRow(each, flow * share));
  }
  uncertainty::combineRows(budget, calibration.probability);
  return budget;
}

Budget differenceBudget(const DualFlow& flow, const CalibratedStrouhal& rotorA,
                        const CalibratedStrouhal& rotorB,
                        const uncertainty::StandUncertainty& instruments,
                        const uncertainty::OperatingPoint& at, const Service& service) {
  const double perA = 100 * flow.rotorA.flow / flow.flow;
  const double perB = 100 * flow.rotorB.flow / flow.flow;
  Budget budget = uncertainty::pairBudget(
      flow.differencePercent, {rotorA.calibration, perA / rotorA.calibration->value},
      {rotorB.calibration, -perB / rotorB.calibration->value}, uncertainty::SharedBy::rotors);
  for (const Component& each : instruments.components) {
    const double size = uncertainty::componentSize(each, at);
    const double a = size * perA * sensitivityOf(each, steepnessOf(rotorA), service);
    const double b = size * perB * sensitivityOf(each, steepnessOf(rotorB), service);
    const double variance = a * a + b * b - 2 * correlationOf(each) * a * b;
    budget.rows.push_back(serviceRow(each, std::sqrt(std::max(0.0, variance))));
  }
  uncertainty::combineRows(budget, rotorA.calibration->probability);
  return budget;
}

Component viscosityOfQuotientComponent(const CalibratedStrouhal& quotient,
                                       const uncertainty::StandUncertainty& instruments,
                                       const uncertainty::OperatingPoint& at) {
  const double steepness = std::abs(steepnessOf(quotient));
  if (!(steepness > 0)) {
    throw calibration::BadData({"the quotient of the rotors does not depend on the viscosity there",
                                "", "give the viscosity, or a fluid and its temperature"});
  }
  double share = quotient.calibration->standardUncertainty / std::abs(quotient.calibration->value);
  for (const Component& each : instruments.components) {
    if (each.cause != Cause::frequency) continue;
    const double size = uncertainty::componentSize(each, at);
    share = std::hypot(share, size * std::sqrt(2 * (1 - each.betweenRotors)));
  }
  Component component;
  component.cause = Cause::viscosity;
  component.label = "quotient of the rotors";
  component.standard = {100 * share / steepness, &units::unitOf("%")};
  component.degreesOfFreedom = quotient.calibration->degreesOfFreedom;
  return component;
}

}  // namespace pelmora::flow
