// SPDX-License-Identifier: MIT
#include "solver/reference/distrust.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pelmora::solver::reference {
namespace {

// What a deletion may change: nodes up to this far (ln) below the best are asked.
constexpr double scanDepth = 30;

// In a series of hundreds of points, one point hardly changes the curve this many places away.
constexpr std::size_t influence = 10;

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

// A point, or a pair of neighbours, that is less likely than the limit.
struct Suspect {
  // Tail probability; doubled for a pair, because testing the pairs doubles the number of tests.
  double probability;
  std::size_t first, last;  // places in Knots::order; equal for a single point
};

// The least likely first.
std::vector<Suspect> suspectsOf(const Knots& knots, const LeftOut& left, double limit) {
  std::vector<Suspect> suspects;
  const auto add = [&](double probability, std::size_t first, std::size_t last) {
    if (probability < limit && !mayBeFriction(knots, left, first))
      suspects.push_back({probability, first, last});
  };
  for (std::size_t i = 0; i < left.points.size(); ++i) add(left.points[i].tail, i, i);
  for (const LeftOutPair& pair : left.pairs) add(2 * pair.tail, pair.first, pair.second);
  std::stable_sort(suspects.begin(), suspects.end(), [](const Suspect& a, const Suspect& b) {
    return a.probability < b.probability;
  });
  return suspects;
}

// Whether one may stand out only because the other is bad.
bool areNear(const Suspect& a, const Suspect& b) {
  return a.first <= b.last + influence && b.first <= a.last + influence;
}

// The places in Knots::order to leave out in this round, at most `room` of them: the least likely
// point or pair, then the next ones that are not near any already chosen, up to `atOnce` in all.
std::vector<std::size_t> leastLikely(const Knots& knots, const LeftOut& left, double limit,
                                     std::size_t atOnce, std::size_t room) {
  std::vector<Suspect> taken;
  std::vector<std::size_t> places;
  for (const Suspect& suspect : suspectsOf(knots, left, limit)) {
    const bool isPair = suspect.first != suspect.last;
    if (places.size() + (isPair ? 2 : 1) > room) continue;
    if (std::any_of(taken.begin(), taken.end(),
                    [&](const Suspect& other) { return areNear(suspect, other); }))
      continue;
    taken.push_back(suspect);
    places.push_back(suspect.first);
    if (isPair) places.push_back(suspect.last);
    if (taken.size() >= atOnce) break;
  }
  return places;
}

std::vector<std::size_t> without(const Knots& knots, std::span<const std::size_t> used,
                                 std::span<const std::size_t> places) {
  std::vector<std::size_t> gone;
  for (const std::size_t place : places) gone.push_back(knots.order[place]);
  std::sort(gone.begin(), gone.end());
  std::vector<std::size_t> fewer;
  for (const std::size_t i : used) {
    if (!std::binary_search(gone.begin(), gone.end(), i)) fewer.push_back(i);
  }
  return fewer;
}

}  // namespace

TrustedFit fitTrusted(const FitSetting& setting, std::vector<std::size_t> used,
                      const DistrustRule* rule) {
  const auto n = static_cast<double>(used.size());
  const double limit =
      rule == nullptr ? 0 : rule->falseAlarm * std::min(1.0, rule->shortSeries / n);
  const auto most = rule == nullptr ? 0 : static_cast<std::size_t>(std::ceil(rule->mostPoints * n));
  auto atOnce = rule == nullptr
                    ? 0
                    : std::max<std::size_t>(1, static_cast<std::size_t>(rule->mostInRound * n));
  TrustedFit fit;
  for (;;) {
    fit.knots =
        gatherKnots(setting.x, setting.y, setting.fluid, used, setting.relative, setting.drag);
    fit.nodes = visitLattice(fit.knots, setting.priors, setting.offsets, setting.range,
                             rule == nullptr ? 0 : scanDepth, setting.stop);
    fit.left = leaveOut(fit.knots, setting.priors, setting.offsets, fit.nodes, rule != nullptr,
                        setting.stop);
    if (fit.distrusted.size() >= most) break;
    const auto worst =
        leastLikely(fit.knots, fit.left, limit, atOnce, most - fit.distrusted.size());
    if (worst.empty()) break;
    std::vector<std::size_t> fewer = without(fit.knots, used, worst);
    if (!enoughLeft(setting.x, fewer)) {
      if (atOnce == 1) break;
      atOnce = 1;
      continue;
    }
    for (const std::size_t place : worst) fit.distrusted.push_back(fit.knots.order[place]);
    used = std::move(fewer);
  }
  std::sort(fit.distrusted.begin(), fit.distrusted.end());
  std::erase_if(fit.nodes, [](const SharedNode& node) { return node.share <= 0; });
  return fit;
}

}  // namespace pelmora::solver::reference
