// Why no equation was chosen.
// SPDX-License-Identifier: MIT
#include "band/band.h"

#include <pelmora/calibration/fit.h>
#include <pelmora/calibration/words.h>

#include <cmath>

namespace pelmora::calibration {
namespace {

constexpr double widestBand = 100;

}  // namespace

std::optional<double> passingBand(const Fit& fit, const EquationOutcome& equation) {
  if (equation.Predicted.empty() || fit.fitted.empty()) return std::nullopt;
  const auto tester = createBandTester();
  const auto passes = [&](double percent) {
    auto band = static_cast<float>(percent);
    return tester->TestBand(fit.fitted.column(0), fit.fitted.column(1),
                            equation.Predicted.column(0), equation.Predicted.column(1), band);
  };
  double low = 0, high = widestBand;
  if (!passes(high)) return std::nullopt;
  for (int halving = 0; halving < 40; ++halving) {
    const double middle = (low + high) / 2;
    (passes(middle) ? high : low) = middle;
  }
  const double unit = std::pow(10.0, std::floor(std::log10(high)) - 1);
  for (double steps = std::ceil(high / unit); steps < 1000; ++steps) {
    if (passes(steps * unit)) return steps * unit;
  }
  return std::nullopt;
}

const EquationOutcome* nearestEquation(const Fit& fit) {
  const EquationOutcome* best = nullptr;
  double bestBand = 0;
  for (const EquationOutcome& equation : fit.outcome.Equations) {
    if (equation.Verdict == EquationVerdict::notTried) continue;
    const double band = passingBand(fit, equation).value_or(10 * widestBand);
    const bool isBetter = best == nullptr || equation.Verdict > best->Verdict ||
                          (equation.Verdict == best->Verdict && band < bestBand);
    if (isBetter) best = &equation, bestBand = band;
  }
  return best;
}

std::string Fit::reason() const {
  if (accepted()) return {};
  if (!trouble.empty()) return trouble;
  const EquationOutcome* best = nearestEquation(*this);
  if (best == nullptr) return "no equation was tried";
  std::string why = rejection(*best);
  if (why.ends_with('.')) why.pop_back();
  return "no equation passed the tests; nearest was " + best->Name + " (" + why + ")";
}

}  // namespace pelmora::calibration
