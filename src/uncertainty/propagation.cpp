// SPDX-License-Identifier: MIT
#include "uncertainty/propagation.h"

#include "uncertainty/model_at.h"

#include <algorithm>

namespace pelmora::uncertainty {
namespace {

// Derivatives are taken over this share of a standard uncertainty, and over twice of it.
constexpr double differenceStep = 0.25;

Contribution contributionOf(ModelAt& model, const Input& input, std::size_t i) {
  if (input.standardUncertainty == 0) return {};
  const double near = model.off(i, differenceStep) - model.off(i, -differenceStep);
  const double far = model.off(i, 2 * differenceStep) - model.off(i, -2 * differenceStep);
  const double change = (8 * near - far) / (12 * differenceStep);
  return {change / input.standardUncertainty, change};
}

}  // namespace

double effectiveDegrees(std::span<const double> uncertainties, std::span<const double> degrees) {
  double variance = 0, sum = 0;
  for (std::size_t i = 0; i < uncertainties.size(); ++i) {
    const double square = uncertainties[i] * uncertainties[i];
    variance += square;
    sum += square * square / degrees[i];
  }
  return sum > 0 ? variance * variance / sum : knownExactly;
}

double covariance(std::span<const Contribution> first, std::span<const Contribution> second,
                  std::span<const Correlation> correlations) {
  double sum = 0;
  for (std::size_t i = 0; i < first.size(); ++i)
    sum += first[i].uncertainty * second[i].uncertainty;
  for (const Correlation& each : correlations) {
    sum += each.coefficient * (first[each.first].uncertainty * second[each.second].uncertainty +
                               first[each.second].uncertainty * second[each.first].uncertainty);
  }
  return sum;
}

Propagation propagate(const Model& model, std::span<const Input> inputs,
                      std::span<const Correlation> correlations) {
  requireInputs(inputs, correlations);
  Propagation result;
  std::vector<double> estimates;
  for (const Input& input : inputs) estimates.push_back(input.estimate);
  result.value = model(estimates);
  ModelAt at(model, inputs);
  for (std::size_t i = 0; i < inputs.size(); ++i)
    result.contributions.push_back(contributionOf(at, inputs[i], i));

  // Rounding may leave a little below zero where correlated inputs cancel.
  const double variance = covariance(result.contributions, result.contributions, correlations);
  result.standardUncertainty = std::sqrt(std::max(0.0, variance));

  const std::vector<std::size_t> group = correlatedGroups(inputs.size(), correlations);
  std::vector<double> uncertainties, degrees;
  for (std::size_t g = 0; g < inputs.size(); ++g) {
    std::vector<Contribution> members(inputs.size());
    double fewest = knownExactly;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
      if (group[i] != g) continue;
      members[i] = result.contributions[i];
      if (members[i].uncertainty != 0) fewest = std::min(fewest, inputs[i].degreesOfFreedom);
    }
    uncertainties.push_back(std::sqrt(std::max(0.0, covariance(members, members, correlations))));
    degrees.push_back(fewest);
  }
  result.degreesOfFreedom = effectiveDegrees(uncertainties, degrees);
  return result;
}

}  // namespace pelmora::uncertainty
