// SPDX-License-Identifier: MIT
#include "solver/reference/distrust.h"

#include <algorithm>
#include <cmath>

namespace pelmora::solver::reference {
namespace {

// What a deletion may change: nodes up to this far (ln) below the best are asked.
constexpr double scanDepth = 30;

bool enoughLeft(std::span<const double> x, std::span<const std::size_t> used) {
  std::vector<double> places;
  for (const std::size_t i : used) places.push_back(x[i]);
  std::sort(places.begin(), places.end());
  places.erase(std::unique(places.begin(), places.end()), places.end());
  return used.size() >= fewestPoints && places.size() >= fewestFlows;
}

// A single reading at the lowest flow that lies low: bearing friction does that to good points, and
// no other point is there to ask.
bool mayBeFriction(const Knots& knots, const LeftOut& left, std::size_t place) {
  return knots.relative && place == 0 && knots.knots[0].count == 1 && left.points[0].error < 0;
}

// The places in Knots::order of the least likely point or pair, if it is unlikely enough.
std::vector<std::size_t> leastLikely(const Knots& knots, const LeftOut& left, double limit,
                                     bool pairsToo) {
  std::vector<std::size_t> worst;
  double lowest = limit;
  for (std::size_t i = 0; i < left.points.size(); ++i) {
    if (left.points[i].tail < lowest && !mayBeFriction(knots, left, i)) {
      lowest = left.points[i].tail;
      worst = {i};
    }
  }
  lowest /= 2;  // there are about as many pairs again
  for (const LeftOutPair& pair : left.pairs) {
    if (pairsToo && pair.tail < lowest && !mayBeFriction(knots, left, pair.first)) {
      lowest = pair.tail;
      worst = {pair.first, pair.second};
    }
  }
  return worst;
}

}  // namespace

TrustedFit fitTrusted(const FitSetting& setting, std::vector<std::size_t> used,
                      const DistrustRule* rule) {
  const auto n = static_cast<double>(used.size());
  const double limit =
      rule == nullptr ? 0 : rule->falseAlarm * std::min(1.0, rule->shortSeries / n);
  const auto most = rule == nullptr ? 0 : static_cast<std::size_t>(std::ceil(rule->mostPoints * n));
  TrustedFit fit;
  for (;;) {
    fit.knots =
        gatherKnots(setting.x, setting.y, setting.fluid, used, setting.relative, setting.drag);
    fit.nodes = visitLattice(fit.knots, setting.priors, setting.offsets, setting.range,
                             rule == nullptr ? 0 : scanDepth, setting.stop);
    fit.left = leaveOut(fit.knots, setting.priors, setting.offsets, fit.nodes, rule != nullptr,
                        setting.stop);
    if (fit.distrusted.size() >= most) break;
    const auto worst = leastLikely(fit.knots, fit.left, limit, fit.distrusted.size() + 2 <= most);
    std::vector<std::size_t> fewer = used;
    for (const std::size_t place : worst) std::erase(fewer, fit.knots.order[place]);
    if (worst.empty() || !enoughLeft(setting.x, fewer)) break;
    for (const std::size_t place : worst) fit.distrusted.push_back(fit.knots.order[place]);
    used = fewer;
  }
  std::sort(fit.distrusted.begin(), fit.distrusted.end());
  std::erase_if(fit.nodes, [](const SharedNode& node) { return node.share <= 0; });
  return fit;
}

}  // namespace pelmora::solver::reference
