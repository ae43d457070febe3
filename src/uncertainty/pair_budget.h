// Two budgets that share causes, joined: sums, quotients and differences of their values.
// SPDX-License-Identifier: MIT
#pragma once

#include "uncertainty/curve_budget.h"

namespace pelmora::uncertainty {

// What the two values have in common: the run of two rotors, or the stand of two calibrations.
enum class SharedBy { rotors, calibrations };

struct Weighed {
  const Budget* budget = nullptr;
  double sensitivity = 1;  // derivative of the joint value
};

// The budget of a value g(a, b). Rows of one cause and label meet, with
//
//   u^2 = (g_a u_a)^2 + (g_b u_b)^2 + 2 r g_a u_a g_b u_b,
//
// r being BudgetRow::betweenRotors or betweenCalibrations: what is common adds in a sum and cancels
// in a quotient or a difference. Budgets of different stands have nothing in common. The CMC is
// 0: call expand() to state one.
//
//   quotient of b and a: pairBudget(b / a, {&A, -b / (a a)}, {&B, 1 / a}, SharedBy::rotors)
//
// Errors: BadData if the two budgets differ in their probability.
[[nodiscard]] Budget pairBudget(double value, Weighed first, Weighed second, SharedBy shared);

}  // namespace pelmora::uncertainty
