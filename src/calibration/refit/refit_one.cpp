// SPDX-License-Identifier: MIT
#include "calibration/refit/refit_one.h"

#include "calibration/repeated_fit.h"
#include "calibration/series_reading.h"
#include "calibration/stored_fit.h"
#include "store/field_value.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace pelmora::calibration {
namespace {

using Kind = RefitResultKind;

// How far the new curve is from the one before, and what to call that.
void compare(const PointArray& before, const PointArray& now, double changedPercent,
             RefitResult& result) {
  if (before.size() < 2) {
    result.kind = Kind::added;
    return;
  }
  const Comparison comparison = compareCurves(before, now);
  result.kind = Kind::changed;
  if (comparison.shifts.empty()) {
    result.reason = "the new curve has no range in common with the one before";
    return;
  }
  result.shiftPercent = comparison.largest().percent;
  result.shiftRoshko = comparison.largest().roshko;
  if (std::abs(result.shiftPercent) <= changedPercent) result.kind = Kind::kept;
}

bool hasPointsToFit(const StoredSeries& stored) {
  return std::ranges::any_of(stored.raw, [](const PointArray& part) { return part.size() > 1; });
}

void requireNames(const RefitTask& task, const std::string& location) {
  if (task.series.empty()) throw namelessSeries(task.meter, location);
  if (task.meter.calibration >= 0) return;
  throw BadData({"a calibration of meter '" + task.meter.serial + "' has no number", location,
                 "examine the database"});
}

}  // namespace

int calibrationNumber(const Value& value) {
  try {
    return isNull(value) ? 0 : toInt16(value);
  } catch (const Error&) {
    return -1;
  }
}

RefitReading readAgain(const Database& lab, Session& session, const RefitTask& task) {
  RefitReading reading;
  RefitCurve& curve = reading.curve;
  curve.result.task = task;
  try {
    requireNames(task, lab.location());
    SeriesReading read = readStored(session, task.meter, task.series);
    curve.basis = read.basis;
    reading.stored = std::move(read.stored);
  } catch (const NotFound& failure) {
    curve.result.kind = Kind::gone;
    curve.result.reason = failure.what();
  } catch (const Damaged& failure) {
    curve.result.kind = Kind::unreadable;
    curve.result.reason = failure.what();
  } catch (const BadData& failure) {
    curve.result.kind = Kind::unreadable;
    curve.result.reason = failure.what();
  }
  return reading;
}

RefitCurve fitAgain(const Database& lab, RefitReading reading, const RefitOptions& options,
                    const std::stop_token& stop) {
  RefitCurve curve = std::move(reading.curve);
  const auto& stored = reading.stored;
  if (!stored) return curve;
  curve.result.kind = hasPointsToFit(*stored) ? Kind::notFitted : Kind::unusable;
  Repeated repeated = repeatWith(lab, *stored, {}, options.change, Observer{.stop = stop});
  if (!repeated.fit.accepted()) {
    curve.result.reason = repeated.trouble;
    return curve;
  }
  if (options.isStrict && !repeated.fit.outcome.Warnings.empty()) {
    curve.result.reason = "a warning: " + repeated.fit.outcome.Warnings.front().Text;
    return curve;
  }
  curve.fit = std::move(repeated.fit);
  compare(stored->curve, curve.fit.curve, options.changedPercent, curve.result);
  curve.result.equation = curve.fit.chosen().Name;
  // Stored all the same, a curve that was older than its points no longer is.
  curve.isSame = stored->age != CurveAge::outdated && curve.fit.curve == stored->curve &&
                 curve.fit.merged == stored->merged && curve.fit.report == stored->report &&
                 options.change.isInForceIn(settingsToRepeat(repeated.settings));
  return curve;
}

void keepOnlyWhatIsStored(Fit& fit) {
  fit.places = {};
  fit.cut = {};
  fit.fitted = {};
  fit.trust.reset();
  if (!fit.outcome.Chosen) return;
  EquationOutcome chosen = std::move(fit.outcome.Equations[*fit.outcome.Chosen]);
  fit.outcome.Equations.clear();
  fit.outcome.Equations.push_back(std::move(chosen));
  fit.outcome.Chosen = 0;
}

void bringUpToDate(const Database& lab, Session& session, const RefitOptions& options,
                   RefitCurve& curve) {
  const RefitTask task = curve.result.task;
  try {
    if (curveBasis(session, task.meter, curve.fit.seriesID) == curve.basis) return;
  } catch (const BadData&) {  // what it is now, the second fit finds out
  }
  const std::size_t index = curve.index;
  curve = fitAgain(lab, readAgain(lab, session, task), options);
  curve.index = index;
  curve.result.changedMeanwhile = true;
}

void storeAgain(const Database& lab, Session& session, const RefitOptions& options,
                RefitCurve& curve) {
  bringUpToDate(lab, session, options, curve);
  if (!curve.isToBeStored()) return;
  (void)storeFit(session, curve.fit);
  curve.result.isStored = true;
}

}  // namespace pelmora::calibration
