// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/fit_advice.h"

#include "apps/pelmora/output/suggested_command.h"
#include "apps/pelmora/output/suggested_exclusion.h"
#include "apps/pelmora/output/text_table.h"

#include <pelmora/calibration/equations.h>
#include <pelmora/calibration/words.h>

namespace pelmora::cli {
namespace {

using calibration::Advice;
using calibration::AdviceKind;
using calibration::Fit;
using calibration::JudgedPoint;

bool takesLogarithm(const EquationOutcome& equation) {
  return equation.Expression.find("log(x)") != std::string::npos ||
         equation.Expression.find("ln(x)") != std::string::npos;
}

// The commands that exclude the points or, if there are too many, the one that lists them.
std::vector<std::string> pointCommands(const std::vector<JudgedPoint>& points,
                                       const FitCall& call) {
  std::vector<SuspectPoint> suspects;
  for (const JudgedPoint& point : points)
    suspects.push_back({point.part, point.number, point.sigmas()});
  if (suspects.size() <= mostSuggestedPoints)
    return exclusionCommands({call.database, call.meter, call.calibration, call.series}, suspects);
  std::vector<std::string> words{"points", call.database};
  addSeriesWords(words, call.meter, call.calibration, call.series);
  return {suggestedCommand(words)};
}

std::vector<std::string> commandsFor(const Advice& advice, FitCall call) {
  switch (advice.kind) {
    case AdviceKind::checkPoint: return pointCommands(advice.points, call);
    case AdviceKind::leaveOutEquation:
    case AdviceKind::beginAboveOne: call.choices.without.push_back(advice.equation); break;
    case AdviceKind::morePoints:
      call.tests.points = static_cast<std::int16_t>(advice.tablePoints);
      break;
    case AdviceKind::widerBand: call.tests.band = advice.band; break;
    case AdviceKind::trustedChoice: call.choices.given.choice = calibration::Choice::trusted; break;
    case AdviceKind::measure:
    case AdviceKind::moreData: return {};
  }
  return {fitCommand(call)};
}

// The advice as a single option, for the one line of trouble.
std::string asOption(const Advice& advice) {
  switch (advice.kind) {
    case AdviceKind::leaveOutEquation:
    case AdviceKind::beginAboveOne: return "--without '" + advice.equation + "'";
    case AdviceKind::morePoints: return "--points " + std::to_string(advice.tablePoints);
    case AdviceKind::widerBand: return "--band " + significantText(*advice.band, 2);
    case AdviceKind::trustedChoice: return "--choose trusted";
    default: return {};
  }
}

std::string sentence(std::string text) {
  if (!text.empty() && text[0] >= 'a' && text[0] <= 'z')
    text[0] = static_cast<char>(text[0] - 'a' + 'A');
  return text;
}

std::string stepText(const Fit& fit, const Advice& advice) {
  if (!fit.trust || advice.kind != AdviceKind::checkPoint) return sentence(advice.text);
  if (advice.points.size() > mostSuggestedPoints) {
    const std::string count = fit.accepted() ? "" : sentence(advice.text) + ". ";
    return count + manyPointsAdvice() + ". This lists them";
  }
  // A warning has named them already.
  return fit.accepted() ? "If you know what went wrong, leave the points out for good"
                        : sentence(advice.text);
}

std::string shortReason(const Fit& fit) {
  const EquationOutcome* best = calibration::nearestEquation(fit);
  if (best == nullptr) return "none was tried";
  std::string why = calibration::rejection(*best);
  if (why.ends_with('.')) why.pop_back();
  return "nearest was " + best->Name + " (" + withShortNumbers(why) + ")";
}

std::string shortAdvice(const Fit& fit) {
  const std::vector<Advice> list = calibration::adviceFor(fit);
  if (list.empty() || list.front().kind == AdviceKind::moreData) {
    const EquationOutcome* best = calibration::nearestEquation(fit);
    const std::string wanted = best == nullptr ? "" : solutionAdvice(fit, *best);
    if (!wanted.empty()) return "try " + wanted;
    const auto& settings = fit.settings;
    const bool isLimited = !settings.only.empty() || !settings.without.empty() || settings.maxOrder;
    return isLimited ? "try more equations (--only, --without, --max-order)"
                     : "look at the points with 'pelmora points'";
  }
  const std::string option = asOption(list.front());
  return option.empty() ? list.front().text : "try " + option;
}

}  // namespace

std::string solutionAdvice(const Fit& fit, const EquationOutcome& equation) {
  if (equation.Verdict != EquationVerdict::noSolution) return {};
  const auto parameters = calibration::parameterCount(equation.Expression);
  if (!parameters) return "an expression that can be read (--equations)";
  if (fit.fitted.size() <= *parameters) {
    return "more points (it has " + counted(*parameters, "parameter") + ", the series " +
           counted(fit.fitted.size(), "point") + ") or an equation file with fewer parameters";
  }
  if (takesLogarithm(equation) && !fit.fitted.empty() && fit.fitted(0, 0) <= 0)
    return "points with Roshko above 0, or an equation file without logarithms";
  return "an equation file (--equations)";
}

std::vector<AdvisedStep> stepsFor(const Fit& fit, const FitCall& call) {
  std::vector<AdvisedStep> steps;
  for (const Advice& advice : calibration::adviceFor(fit))
    steps.push_back({advice, commandsFor(advice, call)});
  return steps;
}

std::string stepLines(const Fit& fit, const std::vector<AdvisedStep>& steps) {
  std::string lines;
  for (const AdvisedStep& step : steps) {
    // A warning has said so already.
    if (fit.accepted() && step.commands.empty()) continue;
    const std::string text = stepText(fit, step.advice);
    lines += wrapped(text + (step.commands.empty() ? "." : ":"), 2);
    for (const std::string& command : step.commands) lines += "    " + command + "\n";
  }
  return lines.empty() ? lines : "\nWhat would help\n" + lines;
}

Trouble noCurveTrouble(const Fit& fit) {
  const std::string place = "series '" + fit.series + "' of meter '" + fit.meter.serial + "': ";
  if (!fit.trouble.empty())
    return {ExitCode::notFitted, "no curve for " + place + fit.trouble, "no curve was stored"};
  return {ExitCode::notFitted, "no equation passed the tests for " + place + shortReason(fit),
          shortAdvice(fit) + "; no curve was stored"};
}

Trouble warningTrouble(const Fit& fit) {
  const auto& warnings = fit.outcome.Warnings;
  return {ExitCode::notFitted,
          "the curve of series '" + fit.series + "' of meter '" + fit.meter.serial + "' has " +
              counted(warnings.size(), "warning") + ": " + withShortNumbers(warnings.front().Text),
          "leave --strict out to store it anyway; no curve was stored"};
}

}  // namespace pelmora::cli
