// SPDX-License-Identifier: MIT
#include "calibration/trust/trust_warnings.h"

#include "base/readable_number.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace pelmora::calibration {
namespace {

// A table whose linear reading takes more than this part of the test band is worth a warning; the
// size that is advised takes at most the smaller part.
constexpr double warnedShareOfBand = 0.5;
constexpr double advisedShareOfBand = 0.25;
// A point that is off by no more than this was named because of its neighbour, not by itself.
constexpr double sigmasOfAPair = 3;

std::string between(double from, double to) {
  return "between Roshko " + significantText(from, 4) + " and " + significantText(to, 4);
}

double percentOff(const JudgedPoint& point, bool isRelative) {
  return std::abs(isRelative ? point.leaveOneOut : 100 * point.leaveOneOut / point.strouhal);
}

CurveWarning distrusted(const JudgedPoint& point, bool isRelative) {
  CurveWarning warning;
  warning.Kind = CurveWarningKind::distrustedPoint;
  warning.FromX = warning.ToX = point.roshko;
  warning.Percent = percentOff(point, isRelative);
  warning.Text = "Point " + std::to_string(point.number) + " of part " +
                 std::to_string(point.part) + " (Roshko " + significantText(point.roshko, 5) +
                 ") is " + sigmasText(point.sigmas()) + " sigma, " +
                 significantText(warning.Percent, 2) + " %, " +
                 (point.leaveOneOut > 0 ? "above" : "below") + " the curve of the others" +
                 (std::abs(point.sigmas()) <= sigmasOfAPair ? ", beside another such point" : "") +
                 "; the curve was fitted without it";
  return warning;
}

// One warning for all of them. points: by rising Roshko number, at least two.
CurveWarning distrustedOthers(const std::vector<const JudgedPoint*>& points, bool isRelative) {
  CurveWarning warning;
  warning.Kind = CurveWarningKind::distrustedPoint;
  warning.FromX = points.front()->roshko;
  warning.ToX = points.back()->roshko;
  double sigmas = 0;
  for (const JudgedPoint* point : points) {
    warning.Percent = std::max(warning.Percent, percentOff(*point, isRelative));
    sigmas = std::max(sigmas, std::abs(point->sigmas()));
  }
  warning.Text = "A further " + std::to_string(points.size()) + " points " +
                 between(warning.FromX, warning.ToX) +
                 " are off the curve of the others by up to " + sigmasText(sigmas) + " sigma, " +
                 significantText(warning.Percent, 2) + " %; the curve was fitted without them";
  return warning;
}

void checkPoints(const Fit& fit, std::vector<CurveWarning>& warnings) {
  std::vector<const JudgedPoint*> points;
  for (const JudgedPoint& point : fit.trust->judged) {
    if (point.use == PointUse::distrusted) points.push_back(&point);
  }
  std::vector<const JudgedPoint*> others;
  if (points.size() > mostNamedPoints + 1) {
    std::ranges::stable_sort(points, std::greater<>{},
                             [](const JudgedPoint* point) { return std::abs(point->sigmas()); });
    others.assign(points.begin() + mostNamedPoints, points.end());
    points.resize(mostNamedPoints);
    const auto byRoshko = [](const JudgedPoint* point) { return point->roshko; };
    std::ranges::stable_sort(points, {}, byRoshko);
    std::ranges::stable_sort(others, {}, byRoshko);
  }
  for (const JudgedPoint* point : points)
    warnings.push_back(distrusted(*point, fit.trust->isRelative));
  if (!others.empty()) warnings.push_back(distrustedOthers(others, fit.trust->isRelative));
}

CurveWarning wide(const ReferenceJudge::WideRange& range, double bandPercent) {
  CurveWarning warning;
  warning.Kind = CurveWarningKind::wideBand;
  warning.FromX = range.from;
  warning.ToX = range.to;
  warning.Percent = range.percent;
  warning.Measure = {range.widest};
  warning.Text = "The points determine the curve only to within " +
                 significantText(range.percent, 2) + " % " + between(range.from, range.to) +
                 ", the test band is " + significantText(bandPercent, 3) +
                 " %: measure at Roshko " + significantText(range.widest, 3);
  return warning;
}

void checkReading(const Fit& fit, const CurveSamples& chosen, std::vector<CurveWarning>& warnings) {
  const ReadingError error = worstReadingError(chosen, fit.curve.column(0), fit.curve.column(1));
  const double band = fit.settings.band;
  if (!(error.percent > warnedShareOfBand * band)) return;
  CurveWarning warning;
  warning.Kind = CurveWarningKind::tableReading;
  warning.FromX = error.fromX;
  warning.ToX = error.toX;
  warning.Percent = error.percent;
  warning.Points =
      tablePointsFor(chosen, fit.min, fit.max, fit.settings.points, advisedShareOfBand * band);
  warning.Text = "The table read linearly misses its own curve by " +
                 significantText(error.percent, 2) + " % " + between(error.fromX, error.toX);
  if (warning.Points > 0)
    warning.Text += ": " + std::to_string(warning.Points) + " points would do";
  warnings.push_back(std::move(warning));
}

void checkEnds(const Fit& fit, std::vector<CurveWarning>& warnings) {
  constexpr double rounding = 1e-12;
  const double low = fit.fitted(0, 0), high = fit.fitted(fit.fitted.size() - 1, 0);
  const auto add = [&](double from, double to) {
    warnings.push_back(
        {CurveWarningKind::extrapolation, from, to, 0,
         "The curve is predicted " + between(from, to) + ", where there are no points"});
  };
  if (fit.min < low * (1 - rounding)) add(fit.min, low);
  if (fit.max > high * (1 + rounding)) add(high, fit.max);
}

}  // namespace

std::vector<CurveWarning> trustWarnings(const Fit& fit, const ReferenceJudge& judge,
                                        const CurveSamples& chosen) {
  std::vector<CurveWarning> warnings;
  checkPoints(fit, warnings);
  for (const auto& range : judge.wideRanges()) warnings.push_back(wide(range, fit.settings.band));
  checkEnds(fit, warnings);
  checkReading(fit, chosen, warnings);
  return warnings;
}

}  // namespace pelmora::calibration
