// Listing the raw points of a series.
// SPDX-License-Identifier: MIT
#include <pelmora/calibration/points.h>

#include "calibration/merging.h"
#include "calibration/part_jobs.h"
#include "curves/table_reading.h"
#include "points/point_fingerprint.h"
#include "solver/reference/reference_curve.h"

#include <pelmora/calibration/choice.h>

#include <algorithm>
#include <cmath>

namespace pelmora::calibration {
namespace {

std::pair<int, std::size_t> place(const RawPoint& point) { return {point.part, point.number}; }

// Every point of the whole parts, by part and number; the state is that of the raw tables.
std::vector<RawPoint> wholePoints(const StoredSeries& series) {
  std::vector<RawPoint> list;
  for (std::size_t p = 0; p < series.raw.size(); ++p) {
    const int part = static_cast<int>(p + 1);
    const PointArray& points = series.raw[p];
    for (std::size_t i = 0; i < points.size(); ++i) {
      RawPoint point;
      point.part = part;
      point.number = series.numberOf(part, i);
      point.roshko = points(i, 0);
      point.strouhal = points(i, 1);
      list.push_back(std::move(point));
    }
  }
  for (const ExcludedPoint& excluded : series.excluded) {
    RawPoint point;
    point.part = excluded.part;
    point.number = excluded.number;
    point.roshko = excluded.roshko;
    point.strouhal = excluded.strouhal;
    point.job = excluded.job;
    point.state = PointState::excluded;
    point.exclusion = excluded.exclusion;
    list.push_back(std::move(point));
  }
  std::ranges::sort(list, {}, place);
  return list;
}

void addJobs(const RunJobs& runs, const std::string& series, std::vector<RawPoint>& list) {
  for (int part = 1; part <= 4; ++part) {
    const auto isOfPart = [&](const RawPoint& point) { return point.part == part; };
    const auto count = static_cast<std::size_t>(std::ranges::count_if(list, isOfPart));
    const PartJobs jobs = runs.of(series, part, count);
    for (RawPoint& point : list) {
      if (!isOfPart(point) || jobs.jobs.empty()) continue;
      point.job = jobs.jobs[point.number - 1];
      point.fluid = jobs.fluid;
      if (!jobs.readings.empty()) point.reading = jobs.readings[point.number - 1];
    }
  }
}

// Whether the stored curve was fitted to points of another range.
bool isOutsideFit(const StoredSeries& series, double roshko) {
  const auto& kept = series.settings;
  return kept &&
         ((kept->FitMin && roshko < *kept->FitMin) || (kept->FitMax && roshko > *kept->FitMax));
}

void addFitRange(const StoredSeries& series, std::vector<RawPoint>& list) {
  for (RawPoint& point : list) {
    if (point.state == PointState::used && isOutsideFit(series, point.roshko))
      point.state = PointState::outsideRange;
  }
}

void addResiduals(const StoredSeries& series, std::vector<RawPoint>& list) {
  const TableReading curve(series.curve);
  if (curve.empty()) return;
  for (RawPoint& point : list) {
    point.residualPercent = curve.deviationPercent(point.roshko, point.strouhal);
    const bool isInside = point.roshko >= curve.lowest() && point.roshko <= curve.highest();
    if (!isInside && !point.residualPercent && point.state == PointState::used)
      point.state = PointState::outsideRange;
  }
}

void addCuts(const StoredSeries& series, std::vector<RawPoint>& list) {
  for (const CutPoint& cut : cutByMerge(series)) {
    RawPoint& point = *std::ranges::lower_bound(list, std::pair(cut.part, cut.number), {}, place);
    point.state = PointState::cut;
    point.cutPercent = cut.offPercent;
  }
}

// Whether the fit of the stored curve left out the points that it distrusted.
bool leavesOutDistrusted(const StoredSeries& series) {
  const auto& kept = series.settings;
  if (!kept || series.curve.empty() || choiceOf(kept->Choice) != Choice::trusted) return false;
  // Another program may have stored its own curve since.
  return kept->CurveFingerprint.empty() ||
         kept->CurveFingerprint == fingerprintOf({&series.curve, 1});
}

// By the smooth curve that assumes no equation. It is the curve of the fitted points: cut ones lie
// off it, as the merge has found, and would bend it.
void addSigmas(const StoredSeries& series, const Observer& observer, std::vector<RawPoint>& list) {
  const bool leavesOut = leavesOutDistrusted(series);
  std::vector<double> x, y;
  std::vector<int> fluid;
  std::vector<std::uint8_t> excluded;
  std::vector<RawPoint*> judged;
  for (RawPoint& point : list) {
    if (!(point.roshko > 0) || !std::isfinite(point.roshko) || !std::isfinite(point.strouhal))
      continue;
    x.push_back(point.roshko);
    y.push_back(point.strouhal);
    fluid.push_back(point.part);
    const bool isLeftOut = point.state == PointState::excluded || point.state == PointState::cut ||
                           isOutsideFit(series, point.roshko);
    excluded.push_back(isLeftOut ? 1 : 0);
    judged.push_back(&point);
  }
  try {
    const auto reference = solver::reference::fitReference(
        {x, y, fluid, excluded},
        {.stopRequested = [&observer] { return observer.stop.stop_requested(); }});
    for (std::size_t i = 0; i < judged.size(); ++i) {
      const auto& seen = reference.points()[i];
      if (std::isfinite(seen.sigmas())) judged[i]->sigmas = seen.sigmas();
      judged[i]->isDistrusted = seen.state == solver::reference::PointState::distrusted;
      if (judged[i]->isDistrusted && leavesOut) judged[i]->state = PointState::distrusted;
    }
  } catch (const solver::reference::Stopped&) {
    const std::string place = placeOf(series.meter, series.name);
    throw Cancelled({"listing the points of " + place + " was cancelled", place, ""});
  } catch (const Error&) {  // too few points for a curve through the others
  }
}

}  // namespace

const char* pointStateKey(PointState state) {
  switch (state) {
    case PointState::used: return "used";
    case PointState::cut: return "cut";
    case PointState::excluded: return "excluded";
    case PointState::distrusted: return "distrusted";
    case PointState::outsideRange: break;
  }
  return "outside range";
}

std::vector<RawPoint> Database::points(const Meter& meter, const std::string& series) const {
  return points(this->series(meter, series));
}

std::vector<RawPoint> Database::points(const StoredSeries& series, const Observer& observer) const {
  return session_->asking("listing the points of " + placeOf(series.meter, series.name), [&] {
    std::vector<RawPoint> list = wholePoints(series);
    const Details details = laboratory();
    const auto nominal = details.find("nominal-flow-column");
    addJobs(RunJobs(*session_, series.meter, nominal == details.end() ? "" : nominal->second),
            series.name, list);
    addFitRange(series, list);
    addResiduals(series, list);
    addCuts(series, list);
    addSigmas(series, observer, list);
    return list;
  });
}

}  // namespace pelmora::calibration
