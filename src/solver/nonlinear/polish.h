// Takes the end of a search to the minimum itself, to the last digit, and says whether it is one.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/nonlinear/regression_model.h"

#include <memory>
#include <optional>
#include <string>

namespace pelmora::solver {

struct Minimum {
  std::vector<DoubleDouble> parameters;
  int iterations = 0;
  std::shared_ptr<const NestedFit>
      fit;  // of the slopes at the minimum; its terms are the parameters
};

// Newton's method in double-double arithmetic. A minimum counts only where the steps become
// negligible against both the parameters and their standard errors and where, if the model tells
// its curvature, the sum of squares curves upwards in every direction.
//
// workLeft: double-double operations that may still be made; counted down.
// Empty where it is none; `reason` then says why.
[[nodiscard]] std::optional<Minimum> polish(const RegressionModel& model,
                                            const std::vector<double>& start, double& workLeft,
                                            std::string& reason);

}  // namespace pelmora::solver
