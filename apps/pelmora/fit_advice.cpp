// SPDX-License-Identifier: MIT
#include "apps/pelmora/fit_advice.h"

#include "apps/pelmora/series_fit.h"
#include "apps/pelmora/output/text_table.h"

#include <pelmora/platform.h>

#include <algorithm>
#include <cmath>

namespace pelmora::cli {
namespace {

bool takesLogarithm(const EquationOutcome& equation) {
  return equation.Expression.find("log(x)") != std::string::npos ||
         equation.Expression.find("ln(x)") != std::string::npos;
}

// A reciprocal of ln(x) has a pole at x = 1.
bool hasPoleAtOne(const EquationOutcome& equation) {
  return equation.Expression.find("/ln(x)") != std::string::npos ||
         equation.Expression.find("/(ln(x))") != std::string::npos ||
         equation.Expression.find("/log(x)") != std::string::npos;
}

bool isAround(const SeriesFit& fit, double x) { return fit.min < x && fit.max > x; }

std::size_t parametersOf(const EquationOutcome& equation) {
  std::size_t count = 0;
  const std::string& text = equation.Expression;
  const auto isLetter = [](char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; };
  std::string seen;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool single = isLetter(text[i]) && (i == 0 || !isLetter(text[i - 1])) &&
                        (i + 1 == text.size() || !isLetter(text[i + 1]));
    if (!single || text[i] == 'x' || seen.find(text[i]) != std::string::npos) continue;
    seen += text[i];
    ++count;
  }
  return count;
}

// The nearest to success: a later test failed, and by less.
const EquationOutcome* nearest(const SeriesFit& fit) {
  const EquationOutcome* best = nullptr;
  double bestBand = 0;
  for (const EquationOutcome& equation : fit.outcome.Equations) {
    if (equation.Verdict == EquationVerdict::notTried) continue;
    const double band = passingBand(fit, equation).value_or(1000);
    const bool isBetter = best == nullptr || equation.Verdict > best->Verdict ||
                          (equation.Verdict == best->Verdict && band < bestBand);
    if (isBetter) best = &equation, bestBand = band;
  }
  return best;
}

}  // namespace

std::optional<double> passingBand(const SeriesFit& fit, const EquationOutcome& equation) {
  if (equation.Predicted.empty() || fit.merged.empty() || !platform().createBandTester)
    return std::nullopt;
  const auto tester = platform().createBandTester();
  const auto passes = [&](double percent) {
    auto band = static_cast<float>(percent);
    return tester->TestBand(fit.merged.column(0), fit.merged.column(1),
                            equation.Predicted.column(0), equation.Predicted.column(1), band);
  };
  double low = 0, high = 100;
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

std::string advice(const SeriesFit& fit, const EquationOutcome& equation) {
  const bool poleInRange = hasPoleAtOne(equation) && isAround(fit, 1);
  const std::string aboveOne = "a range above 1 (--min 1.1), where 1/ln(x) has no pole";
  switch (equation.Verdict) {
    case EquationVerdict::noSolution: {
      const std::size_t parameters = parametersOf(equation);
      if (fit.merged.size() <= parameters) {
        return "more points (it has " + std::to_string(parameters) + " parameters, the series " +
               std::to_string(fit.merged.size()) +
               " points) or an equation file with fewer parameters";
      }
      if (takesLogarithm(equation) && !fit.merged.empty() && fit.merged(0, 0) <= 0) {
        return "points with Roshko above 0, or an equation file without logarithms";
      }
      return "an equation file (--equations)";
    }
    case EquationVerdict::residualTestFailed:
      return poleInRange ? aboveOne : "--ignore-residuals, or an equation file (--equations)";
    case EquationVerdict::ratioTestFailed:
      if (poleInRange) return aboveOne;
      return "a narrower range (--min, --max), an equation file of lower orders (--equations), or "
             "a fit without "
             "--ratio";
    case EquationVerdict::bandTestFailed: {
      if (poleInRange) return aboveOne;
      const auto band = passingBand(fit, equation);
      return band ? "--band " + significantText(*band, 2)
                  : "a narrower range (--min, --max) or more --points";
    }
    default: return {};
  }
}

std::string shortReason(const SeriesFit& fit) {
  const EquationOutcome* best = nearest(fit);
  if (best == nullptr) return "none was tried";
  return "nearest was " + best->Name + " (" + rejection(*best) + ")";
}

std::string shortAdvice(const SeriesFit& fit) {
  const EquationOutcome* best = nearest(fit);
  if (best == nullptr) return "check the equation file";
  const std::string text = advice(fit, *best);
  return text.empty() ? "try another range, band or an equation file" : "try " + text;
}

}  // namespace pelmora::cli
