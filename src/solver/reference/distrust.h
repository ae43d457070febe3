// The robust pass: points that the others contradict.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/reference/left_out.h"

#include <span>
#include <vector>

namespace pelmora::solver::reference {

// What a reference curve takes at least.
inline constexpr std::size_t fewestPoints = 4;
inline constexpr std::size_t fewestFlows = 3;

struct DistrustRule {
  // A good point is named with this probability, in series of up to `shortSeries` points; in a
  // longer one the probability is shared, so that the series as a whole stays quiet.
  double falseAlarm = 0.0005;
  double shortSeries = 20;
  // At most this share of the points, rounded up, is named.
  double mostPoints = 0.2;
  // A round leaves out at most this share of the points, but always one point or pair. So a long
  // series with hundreds of bad points needs few rounds, and a short one is fitted again after
  // each.
  double mostInRound = 0.005;
  bool operator==(const DistrustRule&) const = default;
};

// What is fitted to, and by whom.
struct FitSetting {
  std::span<const double> x, y;
  std::span<const int> fluid;
  bool relative;
  double offsets;
  double drag;
  ReferencePriors priors;
  LatticeRange range;
  StopRequested stop = {};
};

struct TrustedFit {
  std::vector<std::size_t> distrusted;  // indices into x, rising
  Knots knots;                          // of the others
  std::vector<SharedNode> nodes;
  LeftOut left;
};

// The least likely point or pair of neighbours is left out, hyperparameters are averaged again,
// and so on until all that are left agree. Two bad points side by side support each other, so that
// neither stands out alone: hence the pairs. A round of a long series leaves out
// several that are too far apart to affect each other. Without a rule nothing is left out.
//
// Shape:  as gatherKnots. `fewestPoints` at `fewestFlows` different x are always left.
[[nodiscard]] TrustedFit fitTrusted(const FitSetting& setting, std::vector<std::size_t> used,
                                    const DistrustRule* rule);

}  // namespace pelmora::solver::reference
