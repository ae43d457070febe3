// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/fit_advice.h"

#include "apps/pelmora/output/text_table.h"

#include <pelmora/calibration/equations.h>
#include <pelmora/calibration/words.h>

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

bool isAround(const calibration::Fit& fit, double x) { return fit.min < x && fit.max > x; }

}  // namespace

std::string advice(const calibration::Fit& fit, const EquationOutcome& equation) {
  const bool poleInRange = hasPoleAtOne(equation) && isAround(fit, 1);
  const std::string aboveOne = "a range above 1 (--min 1.1), where 1/ln(x) has no pole";
  switch (equation.Verdict) {
    case EquationVerdict::noSolution: {
      const auto parameters = calibration::parameterCount(equation.Expression);
      if (!parameters) return "an expression that can be read (--equations)";
      if (fit.fitted.size() <= *parameters) {
        return "more points (it has " + counted(*parameters, "parameter") + ", the series " +
               counted(fit.fitted.size(), "point") + ") or an equation file with fewer parameters";
      }
      if (takesLogarithm(equation) && !fit.fitted.empty() && fit.fitted(0, 0) <= 0) {
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
      const auto band = calibration::passingBand(fit, equation);
      return band ? "--band " + significantText(*band, 2)
                  : "a narrower range (--min, --max) or more --points";
    }
    default: return {};
  }
}

std::string shortReason(const calibration::Fit& fit) {
  const EquationOutcome* best = calibration::nearestEquation(fit);
  if (best == nullptr) return "none was tried";
  return "nearest was " + best->Name + " (" + calibration::rejection(*best) + ")";
}

std::string shortAdvice(const calibration::Fit& fit) {
  const EquationOutcome* best = calibration::nearestEquation(fit);
  if (best == nullptr) return "check the equation file";
  const std::string text = advice(fit, *best);
  return text.empty() ? "try another range, band or an equation file" : "try " + text;
}

Trouble noCurveTrouble(const calibration::Fit& fit) {
  return {ExitCode::notFitted,
          "no equation passed the tests for series '" + fit.series + "' of meter '" +
              fit.meter.serial + "': " + shortReason(fit),
          shortAdvice(fit) + "; no curve was stored"};
}

}  // namespace pelmora::cli
