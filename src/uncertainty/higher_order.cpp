// SPDX-License-Identifier: MIT
#include "uncertainty/model_at.h"
#include "uncertainty/propagation.h"

namespace pelmora::uncertainty {
namespace {

// Differences are taken over half a standard uncertainty; results are per standard uncertainty.
constexpr double halfStep = 0.5;

struct Derivatives {
  double first, second, third;  // f_i u_i, f_ij u_i u_j, f_ijj u_i u_j^2
};

Derivatives ofOne(ModelAt& model, std::size_t i) {
  const double plus = model.off(i, halfStep), minus = model.off(i, -halfStep),
               middle = model.off(i, 0);
  const double wide = model.off(i, 2 * halfStep) - model.off(i, -2 * halfStep);
  return {(plus - minus) / (2 * halfStep), (plus - 2 * middle + minus) / (halfStep * halfStep),
          (wide - 2 * (plus - minus)) / (2 * halfStep * halfStep * halfStep)};
}

Derivatives ofTwo(ModelAt& model, std::size_t i, std::size_t j) {
  const auto at = [&](double a, double b) { return model.off(i, a * halfStep, j, b * halfStep); };
  const double pp = at(1, 1), pm = at(1, -1), mp = at(-1, 1), mm = at(-1, -1);
  const double p = at(1, 0), m = at(-1, 0);
  return {(p - m) / (2 * halfStep), (pp - pm - mp + mm) / (4 * halfStep * halfStep),
          ((pp - 2 * p + pm) - (mp - 2 * m + mm)) / (2 * halfStep * halfStep * halfStep)};
}

}  // namespace

double higherOrderVariance(const Model& model, std::span<const Input> inputs) {
  requireInputs(inputs, {});
  ModelAt at(model, inputs);
  double sum = 0;
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    for (std::size_t j = 0; j < inputs.size(); ++j) {
      const Derivatives d = i == j ? ofOne(at, i) : ofTwo(at, i, j);
      sum += d.second * d.second / 2 + d.first * d.third;
    }
  }
  return sum;
}

}  // namespace pelmora::uncertainty
