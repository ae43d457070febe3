// SPDX-License-Identifier: MIT
#include "apps/pelmora/refit/refit_worker.h"

#include "apps/pelmora/fit_settings.h"

#include <pelmora/calibration/curve.h>

#include <cmath>

namespace pelmora::cli {
namespace {

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

RefitCurve fitTask(CurveSession& session, const RefitRequest& request, std::size_t index) {
  RefitCurve curve;
  curve.index = index;
  curve.result.task = request.tasks[index];
  try {
    const ReadView view(session.connection());
    const RefitTask& task = request.tasks[index];
    const SeriesInfo before = session.requireSeries(task.meter, task.series).Series.front();
    const StoredSettings stored = settingsOfStored(session, before, {});
    SeriesFit fit = fitWith(session, task.meter, before, stored.settings);
    if (fit.trouble) {
      curve.result.kind = RefitResult::Kind::notFitted;
      curve.result.reason = fit.trouble->what();
      return curve;
    }
    compare(before.Fitted, fit.curve, request.changedPercent, curve.result);
    curve.result.equation = fit.outcome.Equations[*fit.outcome.Chosen].Name;
    curve.isSame =
        fit.curve == before.Fitted && fit.merged == before.Merged && fit.report == before.Summary;
    curve.fit = std::move(fit);
  } catch (const Trouble& trouble) {
    if (trouble.code() != ExitCode::badInput) throw;
    curve.result.reason = trouble.what();
  }
  return curve;
}

}  // namespace

void fitTasks(RefitWork& work) {
  CurveSession session(work.path, Access::read);
  session.data().StatusUpdate = nullptr;
  for (std::size_t index = work.next++; index < work.request.tasks.size(); index = work.next++) {
    std::shared_lock reading(work.file);
    RefitCurve curve = fitTask(session, work.request, index);
    reading.unlock();
    if (!work.queue.send(std::move(curve))) return;
  }
}

}  // namespace pelmora::cli
