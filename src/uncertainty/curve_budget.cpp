// SPDX-License-Identifier: MIT
#include "uncertainty/curve_budget.h"

#include "uncertainty/component_size.h"
#include "uncertainty/convolution.h"
#include "uncertainty/refusal.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pelmora::uncertainty {
namespace {

// The two errors of one cause: what rotor A and rotor B see. Equal where one error is behind both.
struct InputPair {
  Cause cause;
  std::size_t a, b;
  double viscosityChange;
};

// Errors of one kind, summed over the components.
struct Errors {
  double flow = 0, viscosity = 0, temperature = 0, frequencyA = 0, frequencyB = 0;
  double scatterA = 0, scatterB = 0, curve = 0, viscosityOfTemperature = 0;
};

Errors errorsIn(std::span<const double> at, const std::vector<InputPair>& pairs) {
  Errors sum;
  for (const InputPair& pair : pairs) {
    const double a = at[pair.a], b = at[pair.b];
    switch (pair.cause) {
      case Cause::flow: sum.flow += a; break;
      case Cause::viscosity: sum.viscosity += a; break;
      case Cause::temperature:
        sum.temperature += a;
        sum.viscosityOfTemperature += pair.viscosityChange * a;
        break;
      case Cause::frequency:
        sum.frequencyA += a;
        sum.frequencyB += b;
        break;
      case Cause::repeatability:
      case Cause::reproducibility:
        sum.scatterA += a;
        sum.scatterB += b;
        break;
      case Cause::fit:
      case Cause::model:
      case Cause::reading: sum.curve += a; break;
    }
  }
  return sum;
}

class MeasuredCurve {
 public:
  MeasuredCurve(const CurvePlace& place, std::vector<InputPair> pairs)
      : place_(place), pairs_(std::move(pairs)) {
    // Of f_A / (f_A + f_B), which is rotor A's share of the sum of the Roshko numbers.
    const double quotient = place.strouhal;
    shareA_ = place.kind == SeriesKind::quotientAB ? quotient / (1 + quotient) : 1 / (1 + quotient);
  }

  double operator()(std::span<const double> at) const {
    const Errors e = errorsIn(at, pairs_);
    const double t = place_.temperatureF;
    const BodyExpansion& body = place_.expansion;
    double roshko = body.roshkoFactor(t + e.temperature) / body.roshkoFactor(t) /
                    ((1 + e.viscosity) * (1 + e.viscosityOfTemperature));
    double strouhal = 1, scatter = 1;
    if (place_.kind == SeriesKind::rotor) {
      roshko *= 1 + e.frequencyA;
      strouhal = (1 + e.frequencyA) / (1 + e.flow) * body.strouhalFactor(t + e.temperature) /
                 body.strouhalFactor(t);
      scatter = 1 + e.scatterA;
    } else {
      roshko *= 1 + shareA_ * e.frequencyA + (1 - shareA_) * e.frequencyB;
      const double quotient = (1 + e.frequencyA) / (1 + e.frequencyB);
      const double scatters = (1 + e.scatterA) / (1 + e.scatterB);
      const bool isAB = place_.kind == SeriesKind::quotientAB;
      strouhal = isAB ? quotient : 1 / quotient;
      scatter = isAB ? scatters : 1 / scatters;
    }
    return (curveAt(place_.roshko * roshko) + at[0]) / strouhal * scatter * (1 + e.curve);
  }

 private:
  [[nodiscard]] double curveAt(double roshko) const {
    if (place_.curve) return place_.curve(roshko);
    return place_.strouhal + place_.slope * (roshko - place_.roshko);
  }

  CurvePlace place_;
  std::vector<InputPair> pairs_;
  double shareA_ = 1;
};

void requirePlace(const CurvePlace& place) {
  if (!(place.roshko > 0) || !std::isfinite(place.roshko))
    refuse("the Roshko number of a budget is not above 0", "choose one within the curve");
  if (!std::isfinite(place.strouhal) || place.strouhal == 0 || !std::isfinite(place.slope))
    refuse("the curve has no value other than 0 there", "choose a place within the curve");
}

// Whether the errors of the two rotors enter one by one.
bool splitsByRotor(const Component& component, SeriesKind kind) {
  if (kind == SeriesKind::rotor || component.betweenRotors == 1) return false;
  return component.cause == Cause::frequency || component.cause == Cause::repeatability ||
         component.cause == Cause::reproducibility;
}

}  // namespace

CurveMeasurement curveMeasurement(const CurvePlace& place, const StandUncertainty& stand) {
  requirePlace(place);
  CurveMeasurement made;
  BudgetRow fit;
  fit.standardUncertainty = place.fitUncertainty;
  fit.degreesOfFreedom = place.fitDegrees;
  fit.evaluation = Evaluation::a;
  made.rows.push_back(fit);
  made.rowOf.push_back(0);
  made.inputs.push_back({"fit", 0, place.fitUncertainty, Distribution::normal, place.fitDegrees});

  std::vector<Component> components = stand.components;
  if (place.readingErrorPercent > 0) {
    Component reading;
    reading.cause = Cause::reading;
    reading.distribution = Distribution::rectangular;
    reading.standard = {place.readingErrorPercent / halfWidthDivisor(reading.distribution),
                        &units::unitOf("%")};
    components.push_back(reading);
  }
  std::vector<InputPair> pairs;
  for (const Component& each : components) {
    const std::size_t row = made.rows.size(), a = made.inputs.size();
    made.rows.push_back({each.cause, each.label, each.standard.value, each.standard.unit->symbol,
                         each.distribution, each.evaluation, each.degreesOfFreedom, 0, 0,
                         each.betweenRotors, each.betweenCalibrations});
    const bool isSplit = splitsByRotor(each, place.kind);
    // The flow cancels in a quotient of rotors: its size does not matter.
    const bool cancels = each.cause == Cause::flow && place.kind != SeriesKind::rotor;
    const double size = cancels ? 0 : componentSize(each, place.operating);
    for (int rotor = 0; rotor < (isSplit ? 2 : 1); ++rotor) {
      made.inputs.push_back(
          {std::string(causeName(each.cause)), 0, size, each.distribution, each.degreesOfFreedom});
      made.rowOf.push_back(row);
    }
    if (isSplit && each.betweenRotors != 0)
      made.correlations.push_back({a, a + 1, each.betweenRotors});
    pairs.push_back({each.cause, a, isSplit ? a + 1 : a, each.viscosityChange});
  }
  made.model = MeasuredCurve(place, std::move(pairs));
  return made;
}

Budget curveBudget(const CurvePlace& place, const StandUncertainty& stand) {
  CurveMeasurement measured = curveMeasurement(place, stand);
  const Propagation result = propagate(measured.model, measured.inputs, measured.correlations);
  Budget budget;
  budget.stand = stand.name;
  budget.value = result.value;
  budget.standardUncertainty = result.standardUncertainty;
  budget.degreesOfFreedom = result.degreesOfFreedom;
  budget.rows = std::move(measured.rows);
  for (std::size_t row = 0; row < budget.rows.size(); ++row) {
    BudgetRow& made = budget.rows[row];
    std::vector<Contribution> parts(measured.inputs.size());
    std::vector<double> sizes, degrees;
    for (std::size_t i = 0; i < parts.size(); ++i) {
      if (measured.rowOf[i] != row) continue;
      parts[i] = result.contributions[i];
      made.contribution = parts[i].uncertainty;
      sizes.push_back(parts[i].uncertainty);
      degrees.push_back(measured.inputs[i].degreesOfFreedom);
    }
    if (sizes.size() > 1) {
      made.contribution = std::sqrt(std::max(0.0, covariance(parts, parts, measured.correlations)));
      // Two independent errors together are known better than each of them.
      if (made.betweenRotors == 0) made.degreesOfFreedom = effectiveDegrees(sizes, degrees);
    }
    if (made.standardUncertainty > 0)
      made.sensitivity = made.contribution / made.standardUncertainty;
  }
  const bool isQuotient = place.kind != SeriesKind::rotor;
  expand(budget, stand.probability,
         isQuotient ? stand.quotientCmcPercent.value_or(stand.cmcPercent) : stand.cmcPercent);
  return budget;
}

namespace {

// The coverage factor of the rows' distributions, where their shapes make it differ.
std::optional<double> factorOfShape(const std::vector<BudgetRow>& rows, double probability) {
  std::vector<ErrorPart> parts, known;
  bool areNormal = true;
  for (const BudgetRow& row : rows) {
    parts.push_back({row.contribution, row.distribution, row.degreesOfFreedom});
    known.push_back({row.contribution, row.distribution, knownExactly});
    areNormal = areNormal && (row.distribution == Distribution::normal || row.contribution == 0);
  }
  if (areNormal) return std::nullopt;
  const double normal = coverageFactor(probability, knownExactly);
  const std::optional<double> shaped = convolvedFactor(probability, known);
  if (!shaped || std::abs(*shaped - normal) <= normalEnough * normal) return std::nullopt;
  return convolvedFactor(probability, parts);
}

}  // namespace

void expand(Budget& budget, double probability, double cmcPercent) {
  budget.probability = probability;
  budget.coverageFactor = coverageFactor(probability, budget.degreesOfFreedom);
  if (const auto factor = factorOfShape(budget.rows, probability)) {
    budget.isConvolved = true;
    budget.coverageFactor = *factor;
  }
  budget.cmcPercent = cmcPercent;
  const double size = std::abs(budget.value);
  budget.expanded = budget.coverageFactor * budget.standardUncertainty;
  const double least = size * cmcPercent / 100;
  budget.isCmc = budget.expanded < least;
  if (budget.isCmc) budget.expanded = least;
  budget.expandedPercent = size > 0 ? 100 * budget.expanded / size : 0;
}

void combineRows(Budget& budget, double probability) {
  std::vector<double> uncertainties, degrees;
  budget.standardUncertainty = 0;
  for (const BudgetRow& row : budget.rows) {
    uncertainties.push_back(row.contribution);
    degrees.push_back(row.degreesOfFreedom);
    budget.standardUncertainty = std::hypot(budget.standardUncertainty, row.contribution);
  }
  budget.degreesOfFreedom = effectiveDegrees(uncertainties, degrees);
  expand(budget, probability, 0);
}

}  // namespace pelmora::uncertainty
