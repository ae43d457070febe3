// Recognises equations that are polynomials in one function of x, such as ln(x).
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/equations/linear_form.h"

#include <optional>
#include <vector>

namespace pelmora::solver {

// f = sum over i = 0 .. count-1 of factor[i] * parameter[parameterOf[i]] * u^(lowest + i), where u
// is the node `base`. Decimal logarithms are read as natural ones with a factor, so that equations
// in log(x) and in ln(x) have the same u.
struct PowerBasis {
  NodeId base = noNode;
  int lowest = 0;
  std::vector<std::size_t> parameterOf;
  std::vector<DoubleDouble> factor;
};

// Empty where the terms are something else, leave a power out or need one twice, or where there
// is a part without a parameter.
[[nodiscard]] std::optional<PowerBasis> powerBasis(Expression& expression, const LinearForm& form);

}  // namespace pelmora::solver
