// SPDX-License-Identifier: MIT
#include "calibration/exclusions.h"

#include "calibration/part_jobs.h"
#include "calibration/point_selection.h"
#include "calibration/series_lookup.h"
#include "calibration/steps/derivation.h"
#include "store/field_value.h"

#include <algorithm>

namespace pelmora::calibration {
namespace {

constexpr int lastPart = 4;

ExcludedPoint excludedPoint(int part, const ExcludedRow& row) {
  return {part,
          static_cast<std::size_t>(row.Number),
          numberOrNan(row.Roshko),
          numberOrNan(row.Strouhal),
          row.Job,
          {row.Reason, row.ExcludedBy, row.ExcludedAt}};
}

bool isSamePoint(const steps::WholePoint& a, const steps::WholePoint& b) {
  const ExcludedRow row{1, b.Roshko, b.Strouhal, {}, {}, {}, {}, {}};
  return steps::holds({1, {a}, {}}, row);
}

// Whether `now` holds the points of `before`: all of them, or those that were not excluded.
bool isSamePart(const steps::WholePart& before, const steps::WholePart& now) {
  std::vector<steps::WholePoint> rest;
  for (const steps::WholePoint& point : before.Points) {
    if (!point.Exclusion) rest.push_back(point);
  }
  return std::ranges::equal(before.Points, now.Points, isSamePoint) ||
         std::ranges::equal(rest, now.Points, isSamePoint);
}

// Why an exclusion cannot be applied to the part; empty if it can.
std::string obstacle(const steps::WholePart& part, const PartJobs& jobs, const ExcludedRow& row) {
  const auto number = static_cast<std::size_t>(row.Number);
  const bool isThere = row.Number >= 1 && number <= part.Points.size();
  if (isThere && !jobs.jobs.empty() && jobs.jobs[number - 1] != row.Job)
    return "the run is of job " + jobs.jobs[number - 1] + " now";
  if (!isThere) return "the run has only " + std::to_string(part.Points.size()) + " points now";
  if (!steps::holds(part, row)) return "the point has other values now";
  return {};
}

}  // namespace

void readExclusions(Session& session, StoredSeries& series) {
  if (!hasExcludedPoints(session.connection())) return;
  for (int part = 1; part <= lastPart; ++part) {
    const auto rows = readExcludedPoints(session.connection(), part, series.id);
    auto& list = steps::belongTo(rows, series.raw.at(static_cast<std::size_t>(part - 1)))
                     ? series.excluded
                     : series.excludedBefore;
    for (const ExcludedRow& row : rows) list.push_back(excludedPoint(part, row));
  }
}

std::size_t numberInWholePart(std::span<const ExcludedPoint> excluded, int part,
                              std::size_t index) {
  std::size_t number = index + 1;
  for (const ExcludedPoint& point : excluded) {
    if (point.part == part && point.number <= number) ++number;
  }
  return number;
}

DroppedExclusion droppedExclusion(const std::string& series, int part, const ExcludedRow& row,
                                  const std::string& why) {
  return {{series, part, static_cast<std::size_t>(row.Number), numberOrNan(row.Roshko),
           numberOrNan(row.Strouhal)},
          row.Job,
          row.Reason,
          why};
}

void keepExclusions(Session& session, const std::string& series, const steps::WholePart& before,
                    StoredPoints& stored) {
  std::vector<ExcludedRow> rows = before.Adrift;
  for (const steps::WholePoint& point : before.Points) {
    if (point.Exclusion) rows.push_back(*point.Exclusion);
  }
  if (rows.empty()) return;
  Connection& connection = session.connection();
  const bool isSame =
      before.Adrift.empty() &&
      isSamePart(before, steps::readRawPart(connection, before.Part, stored.seriesID));
  if (isSame) {
    steps::writeWholePart(connection, stored.seriesID, before);
    stored.excluded = rows.size();
    return;
  }
  replaceExcludedPoints(connection, before.Part, stored.seriesID, {});
  for (const ExcludedRow& row : rows)
    stored.dropped.push_back(
        droppedExclusion(series, before.Part, row, "other points were stored"));
}

ExclusionsOfRuns::ExclusionsOfRuns(Session& session, const Meter& meter) : session_(session) {
  if (!hasExcludedPoints(session.connection())) return;
  for (const char* name : steps::derivedSeriesNames) {
    const auto id = findSeries(session, meter, name);
    if (!id) continue;
    OfSeries series{*id, {}};
    for (int part = 1; part <= lastPart; ++part) {
      for (ExcludedRow& row : readExcludedPoints(session.connection(), part, *id))
        series.rows.emplace_back(part, std::move(row));
    }
    if (!series.rows.empty()) series_.push_back(std::move(series));
  }
}

void ExclusionsOfRuns::applyAgain(Imported& imported) const {
  for (const OfSeries& before : series_) {
    for (DerivedSeries& series : imported.series) {
      if (series.id == before.id) applyAgain(before, series, imported);
    }
  }
}

void ExclusionsOfRuns::applyAgain(const OfSeries& before, DerivedSeries& series,
                                  Imported& imported) const {
  const RunJobs jobs(session_, imported.meter);
  const auto derivedParts = static_cast<int>(std::min<std::size_t>(lastPart, imported.runs.size()));
  std::vector<std::string> why(before.rows.size(), "its run is gone");
  for (int p = 1; p <= derivedParts; ++p) {
    steps::WholePart part = steps::readRawPart(session_.connection(), p, series.id);
    const PartJobs jobsOfPart = jobs.of(series.name, p, part.Points.size());
    for (std::size_t i = 0; i < before.rows.size(); ++i) {
      const auto& [formerPart, row] = before.rows[i];
      // Another run may have taken the part's place: the job tells.
      const bool isItsRun =
          row.Job.empty() ? formerPart == p
                          : std::ranges::find(jobsOfPart.jobs, row.Job) != jobsOfPart.jobs.end();
      if (!isItsRun && formerPart != p) continue;
      const std::string reason = obstacle(part, jobsOfPart, row);
      if (isItsRun && reason.empty()) {
        part.Points[static_cast<std::size_t>(row.Number - 1)].Exclusion = row;
        why[i].clear();
        ++imported.excludedAgain;
        --series.points.at(static_cast<std::size_t>(p - 1));
      } else if (!why[i].empty() && !reason.empty()) {
        why[i] = reason;
      }
    }
    steps::writeWholePart(session_.connection(), series.id, part);
  }
  for (std::size_t i = 0; i < before.rows.size(); ++i) {
    const auto& [part, row] = before.rows[i];
    if (!why[i].empty() && part <= derivedParts)
      imported.dropped.push_back(droppedExclusion(series.name, part, row, why[i]));
  }
}

}  // namespace pelmora::calibration
