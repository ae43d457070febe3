// The curve of a stored series: its table, and the function behind it.
// SPDX-License-Identifier: MIT
#include "calibration/session.h"

namespace pelmora::calibration {
namespace {

Curve tableOf(const StoredSeries& stored, const Repeated& repeated, const std::string& location) {
  std::vector<CurvePoint> points(stored.storedCurve().size());
  const FitOutcome& outcome = repeated.fit.outcome;
  for (std::size_t i = 0; i < points.size(); ++i) {
    points[i] = {stored.curve(i, 0), stored.curve(i, 1), {}, {}};
    if (!repeated.isStoredCurve()) continue;
    if (i < outcome.ConfidenceHalfWidth.size())
      points[i].confidence = outcome.ConfidenceHalfWidth[i];
    if (i < outcome.PredictionHalfWidth.size())
      points[i].prediction = outcome.PredictionHalfWidth[i];
  }
  try {
    return Curve(std::move(points));
  } catch (const BadData& failure) {
    throw BadData({"the stored curve of " + placeOf(stored.meter, stored.name) +
                       " cannot be read: " + failure.what(),
                   location, "fit it again"});
  }
}

}  // namespace

Curve Database::curve(const Meter& meter, const std::string& series) const {
  return curve(this->series(meter, series));
}

Curve Database::curve(const StoredSeries& stored, const Observer& observer) const {
  (void)stored.storedCurve();
  return tableOf(stored, repeat(stored, {}, observer), location());
}

FittedCurve Database::fittedCurve(const Meter& meter, const std::string& series) const {
  return fittedCurve(this->series(meter, series));
}

FittedCurve Database::fittedCurve(const StoredSeries& stored, const Observer& observer) const {
  (void)stored.storedCurve();
  Repeated repeated = repeat(stored, {}, observer);
  const Curve table = tableOf(stored, repeated, location());
  if (!repeated.isStoredCurve()) return FittedCurve(table, stored.name);
  repeated.fit.curve = stored.curve;  // to the last digit
  return FittedCurve(repeated.fit, standUncertainty(stored.meter));
}

}  // namespace pelmora::calibration
