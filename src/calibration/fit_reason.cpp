// Why no equation was chosen.
// SPDX-License-Identifier: MIT
#include "band/band.h"
#include "calibration/fit_watch.h"

#include <pelmora/calibration/fit.h>
#include <pelmora/calibration/words.h>

#include <cmath>

namespace pelmora::calibration {
namespace {

constexpr double widestBand = 100;

}  // namespace

std::optional<double> passingBand(const Fit& fit, const EquationOutcome& equation,
                                  const std::stop_token& stop) {
  if (equation.Predicted.empty() || fit.fitted.empty()) return std::nullopt;
  const auto tester = createBandTester();
  const auto passes = [&](double percent) {
    requireGoOn(fit, stop);
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

const EquationOutcome* nearestEquation(const Fit& fit, const std::stop_token& stop) {
  std::vector<const EquationOutcome*> rivals;  // at the latest test
  for (const EquationOutcome& equation : fit.outcome.Equations) {
    if (equation.Verdict == EquationVerdict::notTried) continue;
    if (!rivals.empty() && equation.Verdict < rivals.front()->Verdict) continue;
    if (!rivals.empty() && equation.Verdict > rivals.front()->Verdict) rivals.clear();
    rivals.push_back(&equation);
  }
  // A band costs many passes over the points.
  if (rivals.size() < 2) return rivals.empty() ? nullptr : rivals.front();
  const EquationOutcome* best = nullptr;
  double bestBand = 0;
  for (const EquationOutcome* rival : rivals) {
    const double band = passingBand(fit, *rival, stop).value_or(10 * widestBand);
    if (best == nullptr || band < bestBand) best = rival, bestBand = band;
  }
  return best;
}

std::string Fit::reason(const std::stop_token& stop) const {
  if (accepted()) return {};
  if (!trouble.empty()) return trouble;
  const EquationOutcome* best = nearestEquation(*this, stop);
  if (best == nullptr) return "no equation was tried";
  std::string why = rejection(*best);
  if (why.ends_with('.')) why.pop_back();
  return "no equation passed the tests; nearest was " + best->Name + " (" + why + ")";
}

}  // namespace pelmora::calibration
