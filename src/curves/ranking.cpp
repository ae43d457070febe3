// SPDX-License-Identifier: MIT
#include <pelmora/calibration/ranking.h>

#include <algorithm>
#include <limits>

namespace pelmora::calibration {
namespace {

int groupOf(EquationVerdict verdict) {
  switch (verdict) {
    case EquationVerdict::chosen: return 0;
    case EquationVerdict::accepted: return 1;
    case EquationVerdict::bandTestFailed:
    case EquationVerdict::ratioTestFailed:
    case EquationVerdict::residualTestFailed:
    case EquationVerdict::notSound: return 2;
    case EquationVerdict::noSolution: return 3;
    case EquationVerdict::notTried: return 4;
  }
  return 5;
}

}  // namespace

std::vector<RankedEquation> ranking(const FitOutcome& outcome, Choice choice) {
  std::vector<RankedEquation> list;
  for (auto equation = outcome.Equations.rbegin(); equation != outcome.Equations.rend(); ++equation)
    list.push_back({0, *equation});
  const auto isBefore = [choice](const RankedEquation& a, const RankedEquation& b) {
    const int groupA = groupOf(a.outcome.Verdict), groupB = groupOf(b.outcome.Verdict);
    if (groupA != groupB) return groupA < groupB;
    if (choice == Choice::trusted && groupA == groupOf(EquationVerdict::accepted)) {
      constexpr double last = std::numeric_limits<double>::infinity();
      return a.outcome.Aicc.value_or(last) < b.outcome.Aicc.value_or(last);
    }
    return a.outcome.Statistics.AdjustedRSquared > b.outcome.Statistics.AdjustedRSquared;
  };
  std::stable_sort(list.begin(), list.end(), isBefore);
  for (std::size_t i = 0; i < list.size(); ++i) list[i].rank = static_cast<int>(i) + 1;
  return list;
}

}  // namespace pelmora::calibration
