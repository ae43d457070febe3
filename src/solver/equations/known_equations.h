// Equations that have been read, kept for the next fit.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/equations/expression.h"
#include "solver/equations/linear_form.h"
#include "solver/equations/power_basis.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::solver {

// An equation and what its algebra says.
struct KnownEquation {
  Expression expression;
  std::vector<int> letters;
  std::optional<LinearForm> form;   // in all letters; nothing if it has none or is not linear
  std::optional<PowerBasis> basis;  // of the form
};

// The equation of a text. A catalogue is fitted to one series after the other: the texts asked for
// last are kept, for all threads.
//
// Errors: ParseFailure.
[[nodiscard]] std::shared_ptr<const KnownEquation> knownEquation(const std::string& text);

}  // namespace pelmora::solver
