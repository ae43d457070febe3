// SPDX-License-Identifier: MIT
#include <pelmora/calibration/ranking.h>

#include <algorithm>

namespace pelmora::calibration {
namespace {

int groupOf(EquationVerdict verdict) {
  switch (verdict) {
    case EquationVerdict::chosen: return 0;
    case EquationVerdict::accepted: return 1;
    case EquationVerdict::bandTestFailed:
    case EquationVerdict::ratioTestFailed:
    case EquationVerdict::residualTestFailed: return 2;
    case EquationVerdict::noSolution: return 3;
    case EquationVerdict::notTried: return 4;
  }
  return 5;
}

}  // namespace

std::vector<RankedEquation> ranking(const FitOutcome& outcome) {
  std::vector<RankedEquation> list;
  for (auto equation = outcome.Equations.rbegin(); equation != outcome.Equations.rend(); ++equation)
    list.push_back({0, *equation});
  std::stable_sort(list.begin(), list.end(), [](const RankedEquation& a, const RankedEquation& b) {
    const int groupA = groupOf(a.outcome.Verdict), groupB = groupOf(b.outcome.Verdict);
    if (groupA != groupB) return groupA < groupB;
    return a.outcome.Statistics.AdjustedRSquared > b.outcome.Statistics.AdjustedRSquared;
  });
  for (std::size_t i = 0; i < list.size(); ++i) list[i].rank = static_cast<int>(i) + 1;
  return list;
}

}  // namespace pelmora::calibration
