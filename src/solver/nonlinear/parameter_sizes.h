// What the form of an equation says of the sizes of its parameters.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/equations/expression.h"

#include <optional>
#include <vector>

namespace pelmora::solver {

// If x were measured in another unit, u times as small, each parameter would have to be multiplied
// by a power of u for the same curve: by 1 the place of a peak, by -1 the rate of a decay. That
// power gives the size of a parameter from that of x. y counts as a pure number.
//
// Shape: one power for each letter of the equation, in their order; empty if the form leaves it
// open. Sums, and arguments of exp, sin and the like, must not depend on the unit; where constants
// of the equation break this, as in sin(x / 12), the rule that they break is passed over.
[[nodiscard]] std::vector<std::optional<double>> powersOfUnit(const Expression& expression);

}  // namespace pelmora::solver
