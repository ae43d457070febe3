// What is not known beforehand about the curve and its noise, and what is assumed of it.
// SPDX-License-Identifier: MIT
#pragma once

namespace pelmora::solver::reference {

// Units:  length: of ln(Roshko); amplitude: standard deviation of the departure from the straight
//         line, in noise standard deviations at the largest flow; growth: see noiseVariance.
struct Hyperparameters {
  double length = 1;
  double amplitude = 1;
  double growth = 0;
  bool operator==(const Hyperparameters&) const = default;
};

// Variance of one point's noise at a share of the largest flow, in units of that at the largest:
// 1 + growth^2 (1 / flowFraction^2 - 1). What grows so is an error of constant size in the flow:
// a pulse more or less in a fixed time, a leak, a drifting zero.
template <class Number>
[[nodiscard]] constexpr Number noiseVariance(const Number& growth, double flowFraction) {
  return 1 + growth * growth * (1 / (flowFraction * flowFraction) - 1);
}

// Weak knowledge of what calibrations look like. Each stands for one or two points' worth of data.
struct ReferencePriors {
  // ln(length) is normal about ln(length) with this standard deviation.
  double length = 2, lengthSpread = 0.8;
  // The noise at the largest flow as `noiseDegrees` residuals of this relative size would tell.
  double noise = 0.0005, noiseDegrees = 1;
  // ln(amplitude) and growth: flat over the grid.
  bool operator==(const ReferencePriors&) const = default;
};

}  // namespace pelmora::solver::reference
