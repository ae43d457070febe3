// SPDX-License-Identifier: MIT
#include "uncertainty/sampler.h"

#include "uncertainty/refusal.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace pelmora::uncertainty {
namespace {

// Rounding of a correlation of exactly 1 or -1 may leave so much below zero.
constexpr double roundingOfOne = 1e-9;

std::uint64_t mixed(std::uint64_t& state) {
  state += 0x9e3779b97f4a7c15U;
  std::uint64_t z = state;
  z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
  z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
  return z ^ (z >> 31);
}

using Matrix = std::vector<std::vector<double>>;

Matrix correlationMatrix(std::size_t n, std::span<const Correlation> correlations) {
  Matrix matrix(n, std::vector<double>(n, 0.0));
  for (std::size_t i = 0; i < n; ++i) matrix[i][i] = 1;
  for (const Correlation& each : correlations) {
    matrix[each.first][each.second] = each.coefficient;
    matrix[each.second][each.first] = each.coefficient;
  }
  return matrix;
}

// Lower factor of a positive semidefinite matrix.
Matrix choleskyFactor(const Matrix& matrix) {
  const std::size_t n = matrix.size();
  Matrix factor(n, std::vector<double>(n, 0.0));
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = j; i < n; ++i) {
      double left = matrix[i][j];
      for (std::size_t k = 0; k < j; ++k) left -= factor[i][k] * factor[j][k];
      if (i == j) {
        if (left < -roundingOfOne) refuse("the correlations contradict each other", "correct them");
        factor[j][j] = std::sqrt(std::max(0.0, left));
      } else if (factor[j][j] > 0) {
        factor[i][j] = left / factor[j][j];
      } else if (std::abs(left) > roundingOfOne) {
        refuse("the correlations contradict each other", "correct them");
      }
    }
  }
  return factor;
}

void requireDrawable(const Input& first, const Input& second) {
  for (const Input* input : {&first, &second}) {
    if (input->distribution == Distribution::normal) continue;
    refuse("the correlated input '" + input->name + "' is not normal",
           "give it a normal distribution, or leave the correlation out");
  }
  if (first.degreesOfFreedom == second.degreesOfFreedom) return;
  refuse("the correlated inputs '" + first.name + "' and '" + second.name +
             "' differ in their degrees of freedom",
         "give both the same");
}

}  // namespace

RandomStream::RandomStream(std::uint64_t seed, std::uint64_t stream) {
  std::uint64_t start = seed;
  start = mixed(start) ^ stream;
  for (std::uint64_t& word : state_) word = mixed(start);
}

std::uint64_t RandomStream::next() {
  const std::uint64_t result = std::rotl(state_[1] * 5, 7) * 9;
  const std::uint64_t shifted = state_[1] << 17;
  state_[2] ^= state_[0];
  state_[3] ^= state_[1];
  state_[1] ^= state_[2];
  state_[0] ^= state_[3];
  state_[2] ^= shifted;
  state_[3] = std::rotl(state_[3], 45);
  return result;
}

double RandomStream::uniform() { return (static_cast<double>(next() >> 11) + 0.5) * 0x1p-53; }

double RandomStream::normal() {
  if (hasSpare_) {
    hasSpare_ = false;
    return spare_;
  }
  double u = 0, v = 0, square = 0;
  do {
    u = 2 * uniform() - 1;
    v = 2 * uniform() - 1;
    square = u * u + v * v;
  } while (square >= 1 || square == 0);
  const double scale = std::sqrt(-2 * std::log(square) / square);
  spare_ = v * scale;
  hasSpare_ = true;
  return u * scale;
}

double RandomStream::chiSquared(double degreesOfFreedom) {
  const double shape = degreesOfFreedom / 2;
  if (shape < 1) return chiSquared(degreesOfFreedom + 2) * std::pow(uniform(), 1 / shape);
  const double d = shape - 1.0 / 3, c = 1 / std::sqrt(9 * d);
  for (;;) {
    const double x = normal(), root = 1 + c * x;
    if (root <= 0) continue;
    const double cube = root * root * root;
    if (std::log(uniform()) < x * x / 2 + d - d * cube + d * std::log(cube)) return 2 * d * cube;
  }
}

Sampler::Sampler(std::span<const Input> inputs, std::span<const Correlation> correlations) {
  requireInputs(inputs, correlations);
  for (const Correlation& each : correlations) {
    if (each.coefficient != 0) requireDrawable(inputs[each.first], inputs[each.second]);
  }
  const std::vector<std::size_t> group = correlatedGroups(inputs.size(), correlations);
  const Matrix factor = choleskyFactor(correlationMatrix(inputs.size(), correlations));
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    const Input& input = inputs[i];
    draws_.push_back({input.estimate,
                      input.standardUncertainty,
                      input.degreesOfFreedom,
                      input.distribution,
                      group[i],
                      {factor[i].begin(), factor[i].begin() + static_cast<std::ptrdiff_t>(i) + 1}});
  }
}

void Sampler::draw(RandomStream& random, std::span<double> drawn) {
  normals_.assign(draws_.size(), 0.0);
  scales_.assign(draws_.size(), 0.0);
  for (std::size_t i = 0; i < draws_.size(); ++i) {
    const Draw& each = draws_[i];
    const double half = each.standardUncertainty * halfWidthDivisor(each.distribution);
    switch (each.distribution) {
      case Distribution::rectangular:
        drawn[i] = each.estimate + half * (2 * random.uniform() - 1);
        continue;
      case Distribution::triangular:
        drawn[i] = each.estimate + half * (random.uniform() + random.uniform() - 1);
        continue;
      case Distribution::uShaped:
        drawn[i] = each.estimate + half * std::cos(2 * std::acos(-1.0) * random.uniform());
        continue;
      case Distribution::normal: break;
    }
    normals_[i] = random.normal();
    double joint = 0;
    for (std::size_t k = 0; k <= i; ++k) joint += each.factor[k] * normals_[k];
    double& scale = scales_[each.group];
    if (scale == 0) {
      scale = std::isinf(each.degreesOfFreedom)
                  ? 1
                  : std::sqrt(each.degreesOfFreedom / random.chiSquared(each.degreesOfFreedom));
    }
    drawn[i] = each.estimate + each.standardUncertainty * joint * scale;
  }
}

}  // namespace pelmora::uncertainty
