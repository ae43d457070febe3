// SPDX-License-Identifier: MIT
#include "calibration/stored_fit.h"

#include "base/time_text.h"
#include "base/version.h"
#include "calibration/steps/stored_curve.h"
#include "history/fingerprint.h"
#include "points/point_fingerprint.h"

namespace pelmora::calibration {
namespace {

CurveSettings settingsOf(const Fit& fit) {
  CurveSettings settings;
  settings.BandPercent = fit.settings.band;
  settings.Points = fit.settings.points;
  if (!fit.isWholeRange) settings.Min = fit.min, settings.Max = fit.max;
  settings.RatioCurve = fit.settings.ratio;
  settings.Inverted = fit.settings.inverted;
  settings.IgnoreResiduals = fit.settings.ignoreResiduals;
  settings.Equations = fit.settings.equations.text();
  settings.Choice = choiceKey(fit.settings.choice);
  settings.FitMin = fit.settings.fitMin;
  settings.FitMax = fit.settings.fitMax;
  settings.Only = fit.settings.only;
  settings.Without = fit.settings.without;
  settings.MaxOrder = fit.settings.maxOrder;
  settings.Spacing = spacingKey(fit.settings.spacing);
  settings.SoftwareVersion = version;
  settings.FittedAt = utcText();
  settings.MergeBandPercent = fit.settings.mergeBand;
  settings.KeepsOverlap = !fit.settings.cutsOverlap;
  settings.PointsFingerprint = fit.pointsFingerprint;
  settings.CurveFingerprint = fingerprintOf({&fit.curve, 1});
  return settings;
}

}  // namespace

std::uint64_t pointsBasis(const Session& session, const Meter& meter, std::int32_t seriesID) {
  return history::fingerprint(session.curves(), history::fittedPoints(meter.id, seriesID));
}

std::uint64_t curveBasis(const Session& session, const Meter& meter, std::int32_t seriesID) {
  return session.asking(placeOf(meter) + " cannot be read", [&] {
    return history::fingerprint(session.curves(),
                                history::fittedPointsAndCurve(meter.id, seriesID));
  });
}

HistoryEntryId storeFit(Session& session, const Fit& fit) {
  const HistoryEntryId kept = session.keep(history::fittedCurve(fit.meter.id, fit.seriesID));
  const steps::StoredSeries series{fit.seriesID, fit.series};
  steps::removeStoredCurve(session.connection(), series);
  steps::insertStoredCurve(session.connection(), series, fit.merged, fit.curve, fit.report);
  keepCurveSettings(session.curves(), fit.seriesID, settingsOf(fit));
  return kept;
}

HistoryEntryId Database::store(const Fit& fit) {
  const std::string place = placeOf(fit.meter, fit.series);
  if (fit.seriesID == 0) {
    throw BadData({"the fit is of points that are in no database", location(),
                   "store the points as a series and fit that"});
  }
  if (!fit.accepted())
    throw NoFit({"the fit of " + place + " has no curve: " + fit.reason(), place, ""});
  return session_->changing("fit", "storing the curve of " + place, [&] {
    if (pointsBasis(*session_, fit.meter, fit.seriesID) != fit.basis) {
      throw Changed({"the points of " + place +
                         " have changed since they were fitted, or the "
                         "series was deleted",
                     location(), "fit it again"});
    }
    return storeFit(*session_, fit);
  });
}

}  // namespace pelmora::calibration
