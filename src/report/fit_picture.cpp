// The picture of a fit that is in no database.
// SPDX-License-Identifier: MIT
#include "base/time_text.h"
#include "base/version.h"
#include "report/build_report.h"
#include "report/svg_report.h"

#include <pelmora/calibration/report.h>

namespace pelmora::report {
namespace {

// The merged points and those that the merge left out, in one part: the fit keeps no more.
PointArray rawPoints(const calibration::Fit& fit) {
  PointArray points(fit.merged.size() + fit.cut.size());
  std::size_t row = 0;
  for (; row < fit.merged.size(); ++row) {
    points(row, 0) = fit.merged(row, 0);
    points(row, 1) = fit.merged(row, 1);
  }
  for (const calibration::CutPoint& cut : fit.cut) {
    points(row, 0) = cut.roshko;
    points(row++, 1) = cut.strouhal;
  }
  return points;
}

SeriesInput seriesOf(const calibration::Fit& fit) {
  SeriesInput input;
  input.stored.SeriesName = fit.series.empty() ? "Fit" : fit.series;
  input.stored.SeriesID = fit.seriesID;
  input.stored.Raw[0].Points = rawPoints(fit);
  input.stored.Merged = fit.merged;
  input.stored.Fitted = fit.curve;
  input.stored.Summary = fit.report;
  input.settings.BandPercent = fit.settings.band;
  input.settings.Points = fit.settings.points;
  input.settings.RatioCurve = fit.settings.ratio;
  input.settingsAreKept = true;
  input.refit = {fit.outcome, fit.merged, fit.curve, fit.reason()};
  return input;
}

}  // namespace
}  // namespace pelmora::report

namespace pelmora::calibration {

std::string plotOf(const Fit& fit) {
  report::ReportInput input;
  input.meter.SerialNumber = fit.meter.serial;
  input.softwareVersion = version;
  input.createdAt = utcText();
  input.series.push_back(report::seriesOf(fit));
  return report::svgReport(report::buildReport(input));
}

}  // namespace pelmora::calibration
