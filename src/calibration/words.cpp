// SPDX-License-Identifier: MIT
#include "base/readable_number.h"

#include <pelmora/calibration/advice.h>
#include <pelmora/calibration/choice.h>
#include <pelmora/calibration/fit.h>
#include <pelmora/calibration/values.h>
#include <pelmora/calibration/words.h>

namespace pelmora::calibration {

const char* choiceKey(Choice choice) {
  return choice == Choice::trusted ? "trusted" : "adjusted-r2";
}

std::optional<Choice> choiceOf(std::string_view key) {
  for (const Choice choice : {Choice::adjustedR2, Choice::trusted}) {
    if (key == choiceKey(choice)) return choice;
  }
  return std::nullopt;
}

const char* spacingKey(PointSpacing spacing) {
  return spacing == PointSpacing::optimal ? "optimal" : "usual";
}

std::optional<PointSpacing> spacingOf(std::string_view key) {
  for (const PointSpacing spacing : {PointSpacing::usual, PointSpacing::optimal}) {
    if (key == spacingKey(spacing)) return spacing;
  }
  return std::nullopt;
}

const char* curveAgeKey(CurveAge age) {
  switch (age) {
    case CurveAge::none: return "none";
    case CurveAge::current: return "current";
    case CurveAge::outdated: return "outdated";
    case CurveAge::unknown: break;
  }
  return "unknown";
}

const char* adviceKey(AdviceKind kind) {
  switch (kind) {
    case AdviceKind::checkPoint: return "checkPoint";
    case AdviceKind::leaveOutEquation: return "leaveOutEquation";
    case AdviceKind::beginAboveOne: return "beginAboveOne";
    case AdviceKind::measure: return "measure";
    case AdviceKind::morePoints: return "morePoints";
    case AdviceKind::widerBand: return "widerBand";
    case AdviceKind::trustedChoice: return "trustedChoice";
    case AdviceKind::moreData: return "moreData";
  }
  return "unknown";
}

const char* verdictKey(EquationVerdict verdict) {
  switch (verdict) {
    case EquationVerdict::notTried: return "notTried";
    case EquationVerdict::noSolution: return "noSolution";
    case EquationVerdict::residualTestFailed: return "residualTestFailed";
    case EquationVerdict::ratioTestFailed: return "ratioTestFailed";
    case EquationVerdict::bandTestFailed: return "bandTestFailed";
    case EquationVerdict::accepted: return "accepted";
    case EquationVerdict::chosen: return "chosen";
    case EquationVerdict::notSound: return "notSound";
  }
  return "unknown";
}

const char* warningKey(CurveWarningKind kind) {
  switch (kind) {
    case CurveWarningKind::pole: return "pole";
    case CurveWarningKind::oscillation: return "oscillation";
    case CurveWarningKind::fewLevels: return "fewLevels";
    case CurveWarningKind::extrapolation: return "extrapolation";
    case CurveWarningKind::tableReading: return "tableReading";
    case CurveWarningKind::distrustedPoint: return "distrustedPoint";
    case CurveWarningKind::wideBand: return "wideBand";
  }
  return "unknown";
}

std::string verdictText(EquationVerdict verdict) {
  switch (verdict) {
    case EquationVerdict::notTried: return "not tried";
    case EquationVerdict::noSolution: return "no solution";
    case EquationVerdict::residualTestFailed: return "residuals";
    case EquationVerdict::ratioTestFailed: return "not falling";
    case EquationVerdict::bandTestFailed: return "outside band";
    case EquationVerdict::accepted: return "passed";
    case EquationVerdict::chosen: return "chosen";
    case EquationVerdict::notSound: return "not sound";
  }
  return "?";
}

std::string rejection(const EquationOutcome& equation) {
  switch (equation.Verdict) {
    case EquationVerdict::notTried:
    case EquationVerdict::accepted:
    case EquationVerdict::chosen: return {};
    case EquationVerdict::residualTestFailed:
      return "residual test: " + percentText(equation.WorstResidualRatio * 100) + " % at Roshko " +
             significantText(equation.WorstResidualX, 6);
    default: return equation.Reason;
  }
}

bool hasSolution(const EquationOutcome& equation) {
  return equation.Verdict != EquationVerdict::notTried &&
         equation.Verdict != EquationVerdict::noSolution;
}

}  // namespace pelmora::calibration
