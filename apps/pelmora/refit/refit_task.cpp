// SPDX-License-Identifier: MIT
#include "apps/pelmora/refit/refit_task.h"

#include "apps/pelmora/checked_fit.h"
#include "apps/pelmora/fit_settings.h"
#include "history/fingerprint.h"

#include <pelmora/calibration/curve.h>

#include <cmath>

namespace pelmora::cli {
namespace {

using Kind = RefitResult::Kind;

// How far the new curve is from the one before, and what to call that.
void compare(const PointArray& before, const PointArray& now, double changedPercent,
             RefitResult& result) {
  if (before.size() < 2) {
    result.kind = RefitResult::Kind::added;
    return;
  }
  const calibration::Comparison comparison = calibration::compareCurves(before, now);
  result.kind = RefitResult::Kind::changed;
  if (comparison.shifts.empty()) {
    result.reason = "the new curve has no range in common with the one before";
    return;
  }
  const bool isLow = std::abs(comparison.lowest.percent) > std::abs(comparison.highest.percent);
  const auto& largest = isLow ? comparison.lowest : comparison.highest;
  result.shiftPercent = largest.percent;
  result.shiftRoshko = largest.roshko;
  if (std::abs(largest.percent) <= changedPercent) result.kind = RefitResult::Kind::kept;
}

// Only trouble with the series itself belongs to its result.
void requireOwnTrouble(const Trouble& trouble) {
  if (trouble.code() == ExitCode::database || trouble.code() == ExitCode::unexpected) {
    throw Trouble(trouble);
  }
}

struct StoredSeries {
  MeterInfo meter;
  StoredSettings settings;
};

// Nothing where the series cannot be read; the result says why.
std::optional<StoredSeries> readTask(CurveSession& session, RefitCurve& curve) {
  const RefitTask& task = curve.result.task;
  try {
    if (task.trouble) throw Trouble(*task.trouble);
    StoredSeries stored{session.requireSeries(task.meter, task.series), {}};
    const SeriesInfo& entry = stored.meter.Series.front();
    const auto scope = history::fittedPointsAndCurve(stored.meter.MeterID, entry.SeriesID);
    curve.basis = readFingerprint(session, scope, task.series);
    stored.settings = settingsOfStored(session, entry, {});
    return stored;
  } catch (const Trouble& trouble) {
    requireOwnTrouble(trouble);
    const bool isGone = trouble.code() == ExitCode::unknownName;
    curve.result.kind = isGone ? Kind::gone : Kind::unreadable;
    curve.result.reason = trouble.what();
    return std::nullopt;
  }
}

bool isAsFitted(CurveSession& session, const RefitCurve& curve) {
  const auto scope = history::fittedPointsAndCurve(curve.fit.meterID, curve.fit.seriesID);
  try {
    return readFingerprint(session, scope, curve.fit.series) == curve.basis;
  } catch (const Trouble&) {
    return false;  // what it is now, the second fit finds out
  }
}

}  // namespace

RefitCurve fitTask(CurveSession& session, const RefitRequest& request, std::size_t index) {
  RefitCurve curve;
  curve.index = index;
  curve.result.task = request.tasks[index];
  const auto stored = readTask(session, curve);
  if (!stored) return curve;
  const SeriesInfo& before = stored->meter.Series.front();
  curve.result.kind = hasPointsToFit(before) ? Kind::notFitted : Kind::unusable;
  try {
    SeriesFit fit = fitWith(session, stored->meter, before, stored->settings.settings);
    if (fit.trouble) {
      curve.result.reason = fit.trouble->what();
      return curve;
    }
    compare(before.Fitted, fit.curve, request.changedPercent, curve.result);
    curve.result.equation = fit.outcome.Equations[*fit.outcome.Chosen].Name;
    curve.isSame =
        fit.curve == before.Fitted && fit.merged == before.Merged && fit.report == before.Summary;
    curve.fit = std::move(fit);
  } catch (const Trouble& trouble) {
    requireOwnTrouble(trouble);
    curve.result.reason = trouble.what();
  }
  return curve;
}

void storeTask(StoredChange& change, const RefitRequest& request, RefitCurve& curve) {
  change.begin();
  if (!isAsFitted(change.session(), curve)) {
    curve = fitTask(change.session(), request, curve.index);
    curve.result.changedMeanwhile = true;
    if (!curve.isToBeStored()) return;
  }
  storeCurve(change, curve.result.task.meter, curve.fit);
  curve.result.isStored = curve.fit.isStored;
}

}  // namespace pelmora::cli
