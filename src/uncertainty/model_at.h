// A measurement model beside the estimates of its inputs.
// SPDX-License-Identifier: MIT
#pragma once

#include "uncertainty/input.h"
#include "uncertainty/refusal.h"

#include <cmath>
#include <vector>

namespace pelmora::uncertainty {

class ModelAt {
 public:
  ModelAt(const Model& model, std::span<const Input> inputs) : model_(model), inputs_(inputs) {
    for (const Input& input : inputs) at_.push_back(input.estimate);
  }

  // With input i `a` standard uncertainties off its estimate, and then input j `b` more of its own.
  [[nodiscard]] double off(std::size_t i, double a, std::size_t j, double b) {
    at_[i] += a * inputs_[i].standardUncertainty;
    at_[j] += b * inputs_[j].standardUncertainty;
    const double value = model_(at_);
    at_[i] = inputs_[i].estimate;
    at_[j] = inputs_[j].estimate;
    if (!std::isfinite(value)) {
      refuse("the measurement model has no value near the estimate of '" + inputs_[i].name + "'",
             "check the estimates and their uncertainties");
    }
    return value;
  }
  [[nodiscard]] double off(std::size_t i, double a) { return off(i, a, i, 0); }

 private:
  const Model& model_;
  std::span<const Input> inputs_;
  std::vector<double> at_;
};

}  // namespace pelmora::uncertainty
