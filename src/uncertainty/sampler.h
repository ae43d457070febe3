// Random values of the inputs of a measurement model.
// SPDX-License-Identifier: MIT
#pragma once

#include "uncertainty/input.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace pelmora::uncertainty {

// Uniform numbers of 53 bits in (0, 1), the same on every system.
//
// Source: Blackman, Vigna: Scrambled linear pseudorandom number generators, ACM TOMS 47 (2021),
//         xoshiro256**, seeded by SplitMix64.
class RandomStream {
 public:
  // Streams of one seed do not overlap in practice.
  RandomStream(std::uint64_t seed, std::uint64_t stream);
  [[nodiscard]] double uniform();
  // Marsaglia's polar method.
  [[nodiscard]] double normal();
  // Marsaglia, Tsang: A simple method for generating gamma variables, ACM TOMS 26 (2000).
  [[nodiscard]] double chiSquared(double degreesOfFreedom);

 private:
  std::uint64_t next();
  std::array<std::uint64_t, 4> state_{};
  double spare_ = 0;
  bool hasSpare_ = false;
};

// Draws all inputs together. A value that copies what it needs; each thread needs its own.
class Sampler {
 public:
  // Errors: as monteCarlo.
  Sampler(std::span<const Input> inputs, std::span<const Correlation> correlations);
  // Shape:  drawn: one value per input.
  void draw(RandomStream& random, std::span<double> drawn);

 private:
  struct Draw {
    double estimate, standardUncertainty, degreesOfFreedom;
    Distribution distribution;
    std::size_t group;           // inputs of one group share the scale of Student's distribution
    std::vector<double> factor;  // row of the Cholesky factor of the correlations, up to itself
  };
  std::vector<Draw> draws_;
  std::vector<double> normals_, scales_;  // of one draw
};

}  // namespace pelmora::uncertainty
