// Random numbers for simulated calibrations.
// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstdint>
#include <random>

namespace pelmora::study {

class RandomDraws {
 public:
  explicit RandomDraws(std::uint64_t seed) : random_(seed) {}

  double uniform(double a, double b) {
    return std::uniform_real_distribution<double>(a, b)(random_);
  }
  double logUniform(double a, double b) { return a * std::pow(b / a, uniform(0, 1)); }
  int whole(int a, int b) { return std::uniform_int_distribution<int>(a, b)(random_); }
  double normal() { return std::normal_distribution<double>()(random_); }
  bool chance(double p) { return uniform(0, 1) < p; }

 protected:
  std::mt19937_64 random_;
};

}  // namespace pelmora::study
