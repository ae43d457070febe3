// Input quantities of a measurement model and how they hang together.
// SPDX-License-Identifier: MIT
#pragma once

#include "uncertainty/distribution.h"

#include <cstddef>
#include <functional>
#include <limits>
#include <span>
#include <string>
#include <vector>

namespace pelmora::uncertainty {

inline constexpr double knownExactly = std::numeric_limits<double>::infinity();

// Units:  estimate and standardUncertainty in the input's own unit.
// degreesOfFreedom: how well standardUncertainty is known; infinite for most type B evaluations. A
// normal input with finitely many stands for Student's distribution (JCGM 101:2008, 6.4.9).
struct Input {
  std::string name;
  double estimate = 0, standardUncertainty = 0;
  Distribution distribution = Distribution::normal;
  double degreesOfFreedom = knownExactly;
};

struct Correlation {
  std::size_t first = 0, second = 0;  // indices of inputs
  double coefficient = 0;
};

// The measurand as a function of the inputs, in their order. Monte Carlo calls it from several
// threads at once.
using Model = std::function<double(std::span<const double>)>;

// Errors: BadData naming the input for values that are not finite, an uncertainty below 0, degrees
//         of freedom below 1, and for a correlation of an input with itself, a repeated one, one
//         with an input that does not exist, or one beyond -1 and 1.
void requireInputs(std::span<const Input> inputs, std::span<const Correlation> correlations);

// A number for each input, the same for inputs that correlations other than 0 connect.
[[nodiscard]] std::vector<std::size_t> correlatedGroups(std::size_t inputs,
                                                        std::span<const Correlation> correlations);

}  // namespace pelmora::uncertainty
