// Finds out from an equation itself which parameters it is linear in.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/equations/expression.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace pelmora::solver {

// f = offset + sum over j of coefficient[j] * parameter[j], where neither offset nor coefficients
// hold one of these parameters.
struct LinearForm {
  NodeId offset = noNode;            // noNode: zero
  std::vector<NodeId> coefficients;  // in the order of the letters asked for; noNode: zero
};

// Algebra over sums, products, quotients and powers with the constant exponents 0 and 1: it finds
// brackets multiplied out, not identities such as ln(exp(a)). Adds the nodes of the form to the
// expression. Empty where the equation is not linear in these letters together.
[[nodiscard]] std::optional<LinearForm> linearForm(Expression& expression,
                                                   const std::vector<int>& letters);

// Letters that the equation is linear in together: taken in order of the alphabet as long as that
// holds.
[[nodiscard]] std::vector<int> jointlyLinearLetters(const Expression& expression);

}  // namespace pelmora::solver
