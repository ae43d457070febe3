// SPDX-License-Identifier: MIT
#include "uncertainty/input.h"

#include "uncertainty/refusal.h"

#include <algorithm>
#include <numeric>
#include <cmath>
#include <set>
#include <utility>

namespace pelmora::uncertainty {
namespace {

void requireInput(const Input& input) {
  const std::string name = "input '" + input.name + "'";
  if (!std::isfinite(input.estimate)) refuse(name + " has no finite estimate", "give a number");
  if (!(input.standardUncertainty >= 0) || !std::isfinite(input.standardUncertainty))
    refuse(name + " has no valid standard uncertainty", "give a finite number of 0 or more");
  if (!(input.degreesOfFreedom >= 1))
    refuse(name + " has fewer than one degree of freedom", "give 1 or more, or leave them out");
}

}  // namespace

void requireInputs(std::span<const Input> inputs, std::span<const Correlation> correlations) {
  for (const Input& input : inputs) requireInput(input);
  std::set<std::pair<std::size_t, std::size_t>> seen;
  for (const Correlation& each : correlations) {
    if (each.first >= inputs.size() || each.second >= inputs.size() || each.first == each.second)
      refuse("a correlation does not name two inputs", "name two different inputs");
    const std::string pair = "'" + inputs[std::min(each.first, each.second)].name + "' and '" +
                             inputs[std::max(each.first, each.second)].name + "'";
    if (!(std::abs(each.coefficient) <= 1))
      refuse("the correlation of " + pair + " is not between -1 and 1", "correct it");
    if (!seen.insert(std::minmax(each.first, each.second)).second)
      refuse("the correlation of " + pair + " is given twice", "give it once");
  }
}

std::vector<std::size_t> correlatedGroups(std::size_t inputs,
                                          std::span<const Correlation> correlations) {
  std::vector<std::size_t> group(inputs);
  std::iota(group.begin(), group.end(), std::size_t{0});
  for (const Correlation& each : correlations) {
    if (each.coefficient == 0) continue;
    const std::size_t gone = group[each.second], kept = group[each.first];
    std::replace(group.begin(), group.end(), gone, kept);
  }
  return group;
}

}  // namespace pelmora::uncertainty
