// SPDX-License-Identifier: MIT
#include "calibration/fleet/range_work.h"

#include "calibration/fleet/range_rows.h"
#include "calibration/stored_fit.h"
#include "store/curve_schema.h"
#include "store/own_rows.h"
#include "store/reading.h"

#include <algorithm>
#include <array>
#include <utility>

namespace pelmora::calibration {
namespace {

using Kind = RefitResultKind;

// Ends the transaction of a range whose lease is lost; no exception of the service's.
struct LostLease {};

RangeCounts countsOf(const std::vector<FittedSeries>& list) {
  RangeCounts counts;
  for (const FittedSeries& series : list) {
    const RefitResult& result = series.curve.result;
    if (result.isStored) ++counts.stored;
    if (result.kind == Kind::changed) ++counts.changed;
    if (result.kind == Kind::notFitted || result.kind == Kind::unreadable) ++counts.failed;
  }
  return counts;
}

void addResults(Session& session, std::int64_t job, const std::vector<FittedSeries>& list) {
  const auto rows = openForBatch(session.connection(),
                                 std::string("Select * from ") + fleetResultTable + " where 1=0");
  const auto columns = columnNames(fleetResultTable);
  for (const FittedSeries& series : list) {
    const RefitResult& result = series.curve.result;
    rows->addRow(columns,
                 std::array<Value, 9>{
                     Value(job), Value(series.id), Value(static_cast<std::int64_t>(result.kind)),
                     Value(result.equation), Value(result.shiftPercent), Value(result.shiftRoshko),
                     Value(std::int64_t{result.isStored}),
                     Value(std::int64_t{result.changedMeanwhile}), Value(result.reason)});
  }
  rows->updateBatch();
}

FittedSeries fitted(const Database& lab, Session& session, SeriesRows& rows,
                    const RefitOptions& options) {
  FittedSeries series{rows.id, {}, rows.isPlain, rows.hasResults, rows.basis};
  RefitReading reading;
  if (rows.isPlain) {
    reading.curve.result.task = rows.task;
    reading.stored = std::move(rows.stored);
  } else {
    const auto moment = session.moment();
    reading = readAgain(lab, session, rows.task);
  }
  series.curve = fitAgain(lab, std::move(reading), options);
  if (series.curve.isToBeStored()) {
    keepOnlyWhatIsStored(series.curve.fit);
  } else {
    series.curve.fit = {};
  }
  return series;
}

IdRange idsOf(const LeasedRange& range) { return {range.after, range.last}; }

// Those series of the list that nobody has changed since they were read together.
std::vector<FittedSeries*> unchanged(const Session& session, const LeasedRange& range,
                                     std::vector<FittedSeries>& list) {
  std::vector<FittedSeries*> same;
  readSeries(session, idsOf(range), [&](const std::vector<SeriesRows>& slice) {
    for (const SeriesRows& now : slice) {
      const auto series = std::ranges::lower_bound(list, now.id, {}, &FittedSeries::id);
      if (series != list.end() && series->id == now.id && series->isPlain && now.isPlain &&
          series->basis == now.basis) {
        same.push_back(&*series);
      }
    }
    return true;
  });
  return same;
}

void storeCurves(const Database& lab, Session& session, const LeasedRange& range,
                 const RefitOptions& options, std::vector<FittedSeries>& list) {
  const auto isToBeStored = [](const FittedSeries& series) { return series.curve.isToBeStored(); };
  if (std::ranges::none_of(list, isToBeStored)) return;
  std::vector<const Fit*> fits, replaced;
  for (FittedSeries* series : unchanged(session, range, list)) {
    if (!isToBeStored(*series)) continue;
    fits.push_back(&series->curve.fit);
    if (series->hasResults) replaced.push_back(fits.back());
    series->curve.result.isStored = true;
  }
  for (FittedSeries& series : list) {
    if (isToBeStored(series) && !series.curve.result.isStored)
      storeAgain(lab, session, options, series.curve);
  }
  storeFits(session, fits, replaced);
}

}  // namespace

std::optional<std::vector<FittedSeries>> fitRange(const Database& lab, Session& session,
                                                  const LeasedRange& range,
                                                  const RefitOptions& options,
                                                  const std::function<bool()>& goesOn) {
  std::vector<FittedSeries> list;
  bool isWhole = true;
  readSeries(session, idsOf(range), [&](std::vector<SeriesRows>& slice) {
    for (SeriesRows& rows : slice) {
      isWhole = isWhole && goesOn();
      if (!isWhole) break;
      list.push_back(fitted(lab, session, rows, options));
    }
    return isWhole;
  });
  if (!isWhole) return std::nullopt;
  return list;
}

std::optional<RangeCounts> storeRange(const Database& lab, Session& session,
                                      const LeasedRange& range, const RefitOptions& options,
                                      std::chrono::seconds longest,
                                      std::vector<FittedSeries>& list) {
  try {
    return session.changing("fleet", "storing curves in '" + session.location() + "'", [&] {
      limitChange(session, longest);
      if (!holdRange(session, range)) throw LostLease();
      for (FittedSeries& series : list) series.curve.result.isStored = false;  // another attempt
      storeCurves(lab, session, range, options, list);
      const RangeCounts counts = countsOf(list);
      endRange(session, range, counts);
      addResults(session, range.job, list);
      return counts;
    });
  } catch (const LostLease&) {
    return std::nullopt;
  }
}

}  // namespace pelmora::calibration
