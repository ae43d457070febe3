// The picture of a fit that is in no database.
// SPDX-License-Identifier: MIT
#include "base/time_text.h"
#include "base/version.h"
#include "report/build_report.h"
#include "report/svg_report.h"

#include <pelmora/calibration/report.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace pelmora::report {
namespace {

calibration::PointState stateOf(const calibration::Fit& fit, std::size_t merged) {
  if (!fit.trust) return calibration::PointState::used;
  switch (fit.trust->judged.at(merged).use) {
    case calibration::PointUse::distrusted: return calibration::PointState::distrusted;
    case calibration::PointUse::outside: return calibration::PointState::outsideRange;
    case calibration::PointUse::used: break;
  }
  return calibration::PointState::used;
}

// The merged points and those that the merge left out, by part and number.
std::vector<calibration::RawPoint> pointsOf(const calibration::Fit& fit) {
  std::vector<calibration::RawPoint> points;
  const auto add = [&](int part, std::size_t number, double roshko, double strouhal,
                       calibration::PointState state) {
    calibration::RawPoint point;
    point.part = part;
    point.number = number;
    point.roshko = roshko;
    point.strouhal = strouhal;
    point.state = state;
    points.push_back(std::move(point));
  };
  for (std::size_t i = 0; i < fit.merged.size(); ++i) {
    const calibration::PointPlace& place = fit.places.at(i);
    add(place.part, place.number, fit.merged(i, 0), fit.merged(i, 1), stateOf(fit, i));
  }
  for (const calibration::CutPoint& cut : fit.cut)
    add(cut.part, cut.number, cut.roshko, cut.strouhal, calibration::PointState::cut);
  std::ranges::sort(points, {}, [](const calibration::RawPoint& point) {
    return std::pair(point.part, point.number);
  });
  return points;
}

SeriesInput seriesOf(const calibration::Fit& fit, const std::stop_token& stop) {
  SeriesInput input;
  input.stored.name = fit.series.empty() ? "Fit" : fit.series;
  input.stored.id = fit.seriesID;
  input.stored.raw[0] = fit.merged;
  input.stored.merged = fit.merged;
  input.stored.curve = fit.curve;
  input.stored.report = fit.report;
  input.points = pointsOf(fit);
  input.settings.BandPercent = fit.settings.band;
  input.settings.Points = fit.settings.points;
  input.settings.RatioCurve = fit.settings.ratio;
  input.settingsAreKept = true;
  input.settings.Choice = calibration::choiceKey(fit.settings.choice);
  input.refit = {fit.outcome, fit.curve, fit.reason(stop), ""};
  return input;
}

}  // namespace
}  // namespace pelmora::report

namespace pelmora::calibration {

std::string plotOf(const Fit& fit, const std::stop_token& stop) {
  report::ReportInput input;
  input.meter = fit.meter;
  input.softwareVersion = version;
  input.createdAt = utcText();
  input.stop = stop;
  input.series.push_back(report::seriesOf(fit, stop));
  return report::svgReport(report::buildReport(input));
}

}  // namespace pelmora::calibration
