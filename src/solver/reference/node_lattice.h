// The hyperparameters over which curve and band are averaged.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/reference/restricted_likelihood.h"

#include <span>
#include <vector>

namespace pelmora::solver::reference {

// Nodes lie evenly in ln(length), ln(amplitude / (length / 2)^tilt) and in i of growth = (3^i - 1)
// / 2 firstGrowth u, u the least of the points' shares of the largest flow: 0, 2 and 8 let the
// noise grow by factors of 1, 2.2 and 8 from the largest flow to the least.
struct LatticeRange {
  double shortest = 0.5, lengthRatio = 2;
  int lengths = 5;
  double smallest = 1, amplitudeRatio = 4;
  int amplitudes = 7;
  // A longer and larger wave looks the same to the points: the likelihood's ridge runs this way.
  double tilt = 2;
  double firstGrowth = 2;
  int growths = 3;
  // A node less likely than the best by this factor (ln) has no share.
  double negligible = 7;
  // The same beyond allUpToKnots, where many points leave little to average over.
  double negligibleInLong = 4;
  // The spacing is halved, around the best node, until at least this many nodes share the weight.
  double fewestNodes = 5;
  int mostHalvings = 8;
  // Every node is visited up to this many knots; beyond, the best and its surroundings.
  std::size_t allUpToKnots = 400;
  bool operator==(const LatticeRange&) const = default;
};

// A node and its share of the weight; shares add up to 1.
struct SharedNode {
  Node node;
  double share = 0;
};

// Neighbours in the list that have one length, up to laneCount of them.
[[nodiscard]] std::vector<std::span<const SharedNode>> groupsOf(std::span<const SharedNode> nodes);

// By rising length, so that neighbours share their steps. Where every node is visited, nodes of
// share 0 are there as well up to `depth` (ln) below the best: they may come to count when points
// are left out.
//
// Errors: Stopped.
[[nodiscard]] std::vector<SharedNode> visitLattice(const Knots& knots,
                                                   const ReferencePriors& priors, double offsets,
                                                   const LatticeRange& range, double depth,
                                                   const StopRequested& stop = {});

}  // namespace pelmora::solver::reference
