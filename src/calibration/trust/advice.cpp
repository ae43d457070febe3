// SPDX-License-Identifier: MIT
#include <pelmora/calibration/advice.h>

#include "base/readable_number.h"
#include "calibration/fit_inputs.h"
#include "calibration/trust/trust_warnings.h"
#include "calibration/trust/trusted_fit.h"
#include "curves/curve_checks.h"
#include "curves/table_reading.h"
#include "solver/reference/reference_curve.h"

#include <pelmora/calibration/words.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace pelmora::calibration {
namespace {

constexpr double widestBandAdvised = 3;  // times the test band

// The distrusted points of a fit by adjusted R2. Such a fit has no reference curve, so one is made
// for the advice alone.
std::vector<JudgedPoint> distrustedForAdvice(const Fit& fit) {
  std::vector<int> parts;
  std::vector<std::uint8_t> outside;
  for (std::size_t i = 0; i < fit.merged.size(); ++i) {
    parts.push_back(fit.places[i].part);
    outside.push_back(isOutsideFitRange(fit.settings, fit.merged(i, 0)) ? 1 : 0);
  }
  const auto reference =
      solver::reference::fitReference({fit.merged.column(0), fit.merged.column(1), parts, outside});
  const double unit = reference.summary().relative ? 100 : 1;
  std::vector<JudgedPoint> found;
  for (const std::size_t i : reference.distrusted()) {
    const auto& point = reference.points()[i];
    found.push_back({fit.places[i].part, fit.places[i].number, fit.merged(i, 0), fit.merged(i, 1),
                     PointUse::distrusted, unit * point.residual, unit * point.leaveOneOut,
                     unit * point.leaveOneOutSd});
  }
  return found;
}

// Points that contradict the others, by part and number.
std::vector<JudgedPoint> distrustedPoints(const Fit& fit) {
  std::vector<JudgedPoint> found;
  if (fit.trust) {
    std::ranges::copy_if(fit.trust->judged, std::back_inserter(found),
                         [](const JudgedPoint& p) { return p.use == PointUse::distrusted; });
  } else if (fit.places.size() == fit.merged.size()) {
    try {
      found = distrustedForAdvice(fit);
    } catch (const Error&) {  // too few points, or a Roshko number that is not above 0
    }
  }
  std::ranges::sort(found, {}, [](const JudgedPoint& p) { return std::pair(p.part, p.number); });
  return found;
}

std::string named(const JudgedPoint& point) {
  return "point " + std::to_string(point.number) + " of part " + std::to_string(point.part) +
         " (Roshko " + significantText(point.roshko, 5) + ")";
}

std::string listed(const std::vector<JudgedPoint>& points) {
  std::string text;
  for (const JudgedPoint& point : points) {
    text += (text.empty() ? "" : ", ") + named(point) + ", " + sigmasText(point.sigmas()) +
            " sigma " + (point.leaveOneOut > 0 ? "above" : "below") + " its neighbours";
  }
  return text;
}

Advice checkPoints(const Fit& fit, std::vector<JudgedPoint> points) {
  std::string text = "check ";
  if (points.size() > mostNamedPoints) {
    double most = 0;
    for (const JudgedPoint& point : points) most = std::max(most, std::abs(point.sigmas()));
    text += std::to_string(points.size()) + " points, up to " + sigmasText(most) +
            " sigma off their neighbours";
  } else {
    text += listed(points);
  }
  text += ", and leave out what is wrong";
  if (!fit.series.empty()) text = "series '" + fit.series + "': " + text;
  return {.kind = AdviceKind::checkPoint, .text = text, .points = std::move(points)};
}

// A reciprocal of a logarithm has a pole at x = 1.
bool hasPoleAtOne(const EquationOutcome& equation) {
  for (const char* reciprocal : {"/ln(x)", "/(ln(x))", "/log(x)", "/(log(x))"}) {
    if (equation.Expression.find(reciprocal) != std::string::npos) return true;
  }
  return false;
}

// The equation whose R2 of 0.9999 ended the run, if others were not tried.
const EquationOutcome* endOfRun(const Fit& fit) {
  const auto& all = fit.outcome.Equations;
  const auto isTried = [](const EquationOutcome& e) {
    return e.Verdict != EquationVerdict::notTried;
  };
  if (std::ranges::all_of(all, isTried)) return nullptr;
  // Runs walk the catalogue from its last entry down: the first that was tried was the last.
  const auto last = std::ranges::find_if(all, isTried);
  return last == all.end() ? nullptr : &*last;
}

void adviseAboutEquations(const Fit& fit, std::vector<Advice>& list) {
  const bool isAroundOne = fit.min < 1 && fit.max > 1;
  const EquationOutcome* suspect = fit.accepted() ? &fit.chosen() : nearestEquation(fit);
  const bool hasPole = suspect != nullptr && isAroundOne && hasPoleAtOne(*suspect);
  // A curve that is accepted gains little from equations that were not tried.
  const EquationOutcome* end = fit.accepted() ? nullptr : endOfRun(fit);
  if (end != nullptr) {
    const auto missed = std::ranges::count(fit.outcome.Equations, EquationVerdict::notTried,
                                           &EquationOutcome::Verdict);
    list.push_back({.kind = AdviceKind::leaveOutEquation,
                    .text = "leave out " + end->Name +
                            (hasPole && end == suspect ? ", which has a pole at Roshko 1" : "") +
                            ": it ended the run before " + std::to_string(missed) +
                            (missed == 1 ? " equation was tried" : " equations were tried"),
                    .equation = end->Name});
  }
  if (hasPole && suspect != end) {
    list.push_back({.kind = AdviceKind::beginAboveOne,
                    .text = "begin the range above Roshko 1, where " + suspect->Name +
                            " has a pole, or leave that equation out",
                    .equation = suspect->Name});
  }
}

void adviseAboutBand(const Fit& fit, std::vector<Advice>& list) {
  const EquationOutcome* nearest = nearestEquation(fit);
  if (nearest == nullptr || nearest->Verdict != EquationVerdict::bandTestFailed) return;
  const auto band = passingBand(fit, *nearest);
  if (!band || *band > widestBandAdvised * fit.settings.band) return;
  list.push_back({.kind = AdviceKind::widerBand,
                  .text = "a band of " + significantText(*band, 2) + " % accepts " + nearest->Name,
                  .band = band});
}

void adviseAboutWarnings(const Fit& fit, std::vector<Advice>& list) {
  Advice measure{.kind = AdviceKind::measure, .text = {}};
  for (const CurveWarning& warning : fit.outcome.Warnings) {
    measure.measure.insert(measure.measure.end(), warning.Measure.begin(), warning.Measure.end());
    if (warning.Kind == CurveWarningKind::tableReading && warning.Points > 0) {
      list.push_back({.kind = AdviceKind::morePoints,
                      .text = "fit with " + std::to_string(warning.Points) + " points in the table",
                      .tablePoints = warning.Points});
    }
  }
  if (measure.measure.empty()) return;
  for (const double roshko : measure.measure) {
    measure.text +=
        (measure.text.empty() ? "measure at Roshko " : ", ") + significantText(roshko, 3);
  }
  list.push_back(std::move(measure));
}

// Where the equation's table misses a point most: equations that fail there fail for one reason.
double worstPlace(const Fit& fit, const EquationOutcome& equation) {
  const TableReading table(equation.Predicted);
  double worst = 0, place = 0;
  for (std::size_t i = 0; i < fit.fitted.size(); ++i) {
    const auto off = table.deviationPercent(fit.fitted(i, 0), fit.fitted(i, 1));
    if (!off || std::abs(*off) <= worst) continue;
    worst = std::abs(*off);
    place = fit.fitted(i, 0);
  }
  return place;
}

}  // namespace

std::vector<Advice> adviceFor(const Fit& fit) {
  std::vector<Advice> list;
  if (!fit.trouble.empty()) {
    list.push_back({.kind = AdviceKind::moreData, .text = fit.trouble});
    return list;
  }
  const bool isWanting = !fit.accepted() || !fit.outcome.Warnings.empty();
  if (!isWanting || fit.fitted.empty()) return list;
  std::vector<JudgedPoint> bad = distrustedPoints(fit);
  const bool hasBadPoints = !bad.empty();
  if (hasBadPoints) list.push_back(checkPoints(fit, std::move(bad)));
  if (fit.settings.choice == Choice::adjustedR2) {
    adviseAboutEquations(fit, list);
    if (distinctLevels(fit.fitted.column(0)) >= fewestTrustedFlows) {
      list.push_back({.kind = AdviceKind::trustedChoice,
                      .text = "fit by the rule 'trusted', which tries more equations and stores "
                              "the smooth reference curve where none is sound"});
    }
  }
  if (!fit.accepted() && !hasBadPoints) adviseAboutBand(fit, list);
  adviseAboutWarnings(fit, list);
  return list;
}

std::vector<Rejected> rejectedTogether(const Fit& fit) {
  struct Group {
    EquationVerdict verdict;
    double place;
    Rejected rejected;
  };
  std::vector<Group> groups;
  for (const RankedEquation& ranked : fit.equations()) {
    const EquationOutcome& equation = ranked.outcome;
    const std::string why = rejection(equation);
    if (why.empty()) continue;
    // A trusted fit has already left out the points that make several equations fail. Equations
    // that still fail are too simple for the curve, or swing.
    const bool isByPoint = equation.Verdict == EquationVerdict::bandTestFailed && !fit.trust;
    const bool isNotSound = fit.trust && equation.Verdict == EquationVerdict::notSound;
    const bool isTooLarge = isNotSound && equation.Parameters.size() >= fit.trust->flows;
    const bool isTooSimple = fit.trust && !isTooLarge &&
                             (isNotSound || equation.Verdict == EquationVerdict::bandTestFailed);
    const double place = isByPoint     ? worstPlace(fit, equation)
                         : isTooSimple ? 1
                         : isTooLarge  ? 2
                                       : 0;
    const auto same = std::ranges::find_if(groups, [&](const Group& group) {
      return group.verdict == equation.Verdict && group.place == place &&
             (isByPoint || place > 0 || group.rejected.why == why);
    });
    if (same != groups.end()) {
      same->rejected.names.push_back(equation.Name);
    } else {
      groups.push_back({equation.Verdict, place, {{equation.Name}, why}});
    }
  }
  std::vector<Rejected> rejected;
  for (Group& group : groups) rejected.push_back(std::move(group.rejected));
  return rejected;
}

}  // namespace pelmora::calibration
