// The curve of a stored series: its table, and the function behind it.
// SPDX-License-Identifier: MIT
#include "calibration/evaluation/fitted_curve_body.h"
#include "calibration/session.h"

namespace pelmora::calibration {
namespace {

Curve tableOf(const StoredSeries& stored, const Repeated& repeated, const std::string& location) {
  const FitOutcome withoutBands;
  const FitOutcome& bands = repeated.isStoredCurve() ? repeated.fit.outcome : withoutBands;
  try {
    return Curve(pointsWithBands(stored.curve, bands));
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
  return fittedCurve(stored, repeat(stored, {}, observer));
}

FittedCurve Database::fittedCurve(const StoredSeries& stored, const Repeated& repeated) const {
  const Curve table = tableOf(stored, repeated, location());
  if (!repeated.isStoredCurve()) return FittedCurve(table, stored.name);
  Fit fit = repeated.fit;
  fit.curve = stored.curve;  // to the last digit
  return FittedCurve(fit, standUncertainty(stored.meter));
}

}  // namespace pelmora::calibration
