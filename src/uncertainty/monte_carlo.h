// Propagation of distributions by Monte Carlo, to check the law of propagation.
// SPDX-License-Identifier: MIT
#pragma once

#include "uncertainty/coverage.h"
#include "uncertainty/input.h"

#include <cstdint>
#include <functional>
#include <span>

namespace pelmora::uncertainty {

struct MonteCarloOptions {
  std::size_t mostTrials = 1'000'000;  // at least two blocks of 10,000 are made
  double probability = twoSigmaProbability;
  // Stop once mean, standard deviation and both ends of the interval are certain to this many
  // digits of the standard deviation (JCGM 101:2008, 7.9).
  int significantDigits = 2;
  std::uint64_t seed = 1;
  unsigned threads = 0;  // 0: one for each processor
  // Called before each block, in the caller's thread and others. What it throws ends the trials.
  std::function<void()> goOn = {};
};

// low, high: the probabilistically symmetric coverage interval; shortLow, shortHigh: the shortest
// one (JCGM 101:2008, 7.7).
struct MonteCarloResult {
  double mean = 0, standardDeviation = 0;
  double low = 0, high = 0, shortLow = 0, shortHigh = 0;
  std::size_t trials = 0;
  bool isStable = false;  // false: mostTrials came first
  [[nodiscard]] double halfWidth() const { return (high - low) / 2; }
};

// Any number of threads gives the same result, because each block of 10,000 trials has a generator
// of its own, seeded from MonteCarloOptions. Normal inputs with finite degrees of freedom are
// drawn from Student's distribution; correlated inputs must be normal and are drawn together, with
// one common scale where they share their degrees of freedom (JCGM 102:2011, 5.3.2).
//
// Memory: 8 bytes a trial.
// Errors: as requireInputs; BadData if a correlated input is not normal, correlated inputs differ
//         in their degrees of freedom, the correlations contradict each other, or the model gives a
//         value that is not finite.
// Source: JCGM 101:2008.
[[nodiscard]] MonteCarloResult monteCarlo(const Model& model, std::span<const Input> inputs,
                                          std::span<const Correlation> correlations = {},
                                          const MonteCarloOptions& options = {});

}  // namespace pelmora::uncertainty
