// SPDX-License-Identifier: MIT
#include <pelmora/calibration/curve.h>

#include "curves/table_reading.h"

#include <algorithm>
#include <cmath>

namespace pelmora::calibration {
namespace {

// On each piece between two nodes both readings are straight lines, so their quotient has its
// extremes at the nodes.
std::vector<double> commonNodes(const TableReading& a, const TableReading& b) {
  const double low = std::max(a.lowest(), b.lowest()), high = std::min(a.highest(), b.highest());
  std::vector<double> nodes = a.nodes();
  const std::vector<double> others = b.nodes();
  nodes.insert(nodes.end(), others.begin(), others.end());
  std::erase_if(nodes, [&](double x) { return x < low || x > high; });
  std::sort(nodes.begin(), nodes.end());
  nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
  return nodes;
}

// By the trapezoidal rule; over Roshko itself where one is not positive.
double meanShift(const std::vector<Shift>& shifts) {
  if (shifts.size() == 1) return shifts.front().percent;
  const bool isLog = shifts.front().roshko > 0;
  const auto place = [&](const Shift& s) { return isLog ? std::log(s.roshko) : s.roshko; };
  double sum = 0;
  for (std::size_t i = 1; i < shifts.size(); ++i) {
    sum +=
        (shifts[i].percent + shifts[i - 1].percent) / 2 * (place(shifts[i]) - place(shifts[i - 1]));
  }
  return sum / (place(shifts.back()) - place(shifts.front()));
}

}  // namespace

Comparison compareCurves(const PointArray& earlier, const PointArray& now) {
  Comparison comparison;
  const TableReading before(earlier), after(now);
  if (before.empty() || after.empty()) return comparison;
  for (const double x : commonNodes(before, after)) {
    const auto y = after.at(x);
    if (!y) continue;
    if (const auto percent = before.deviationPercent(x, *y))
      comparison.shifts.push_back({x, *percent});
  }
  if (comparison.shifts.empty()) return comparison;
  const auto [lowest, highest] =
      std::minmax_element(comparison.shifts.begin(), comparison.shifts.end(),
                          [](const auto& a, const auto& b) { return a.percent < b.percent; });
  comparison.lowest = *lowest;
  comparison.highest = *highest;
  comparison.meanPercent = meanShift(comparison.shifts);
  return comparison;
}

}  // namespace pelmora::calibration
