// Jobs: started, looked at, paused and ended.
// SPDX-License-Identifier: MIT
#include <pelmora/calibration/fleet.h>

#include "base/time_text.h"
#include "calibration/fleet/job_rows.h"
#include "calibration/fleet/leases.h"
#include "history/kept_tables.h"
#include "history/row_access.h"
#include "store/curve_schema.h"
#include "store/field_value.h"
#include "store/name_text.h"
#include "store/own_rows.h"
#include "store/reading.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <utility>

namespace pelmora::calibration {
namespace {

using history::wholeOf;

constexpr std::int64_t rateSeconds = 600;

std::string ofJob(FleetJobId job) { return " where JobID=" + std::to_string(job); }

std::size_t countIn(const Value& value) {
  return static_cast<std::size_t>(std::max<std::int64_t>(0, wholeOf(value)));
}

// Also what storing a curve needs: who only writes rows may make none, and finds all there.
void makeTables(Session& session) {
  for (const char* table : {fleetJobTable, fleetRangeTable, fleetResultTable, fitSettingsTable})
    createOwnTable(session.connection(), table, "This database cannot keep the work of a fleet.");
  history::createHistoryTables(session.curves());
}

// By rising ids, each of `size` series. How many.
std::size_t addRanges(Session& session, FleetJobId job, std::size_t size) {
  const auto ranges = openForBatch(session.connection(),
                                   std::string("Select * from ") + fleetRangeTable + " where 1=0");
  constexpr std::array<std::string_view, 6> fields{"JobID",  "AfterID", "LastID",
                                                   "Series", "State",   "Token"};
  std::size_t count = 0;
  for (std::int64_t after = 0, last = 0;; after = last) {
    const auto ids = history::idsOf(session.curves(), "Select TOP " + std::to_string(size) +
                                                          " ID from series where ID>" +
                                                          std::to_string(after) + " ORDER BY ID");
    if (ids.empty()) break;
    last = ids.back();
    ranges->addRow(fields, std::array<Value, 6>{Value(job), Value(after), Value(last),
                                                Value(static_cast<std::int64_t>(ids.size())),
                                                Value(static_cast<std::int64_t>(RangeState::free)),
                                                Value(std::int64_t{0})});
    ++count;
  }
  ranges->updateBatch();
  return count;
}

void requireUsable(const FleetOptions& options, const std::string& location) {
  if (options.rangeSize == 0 || options.rangeSize > 1000000)
    throw BadData({"a range of " + std::to_string(options.rangeSize) + " series is not possible",
                   location, "give 1 to 1000000"});
  if (!(options.changedPercent >= 0) || !std::isfinite(options.changedPercent))
    throw BadData(
        {"the threshold of changed curves is not valid", location, "give per cent, 0 or more"});
}

void addRangeCounts(Session& session, FleetStatus& status) {
  const auto rows = readRows(
      session.connection(),
      "Select State, count(*) as Ranges, sum(Series) as AllSeries, sum(Stored) as AllStored, "
      "sum(Changed) as AllChanged, sum(Failed) as AllFailed from " +
          std::string(fleetRangeTable) + ofJob(status.job) + " group by State");
  for (; !rows->atEnd(); rows->moveNext()) {
    const std::size_t ranges = countIn(rows->value("Ranges"));
    const std::size_t series = countIn(rows->value("AllSeries"));
    status.ranges += ranges;
    status.series += series;
    const auto state = static_cast<RangeState>(wholeOf(rows->value("State")));
    if (state == RangeState::leased) status.leasedRanges = ranges;
    if (state != RangeState::done) continue;
    status.doneRanges = ranges;
    status.done = series;
    status.stored = countIn(rows->value("AllStored"));
    status.changed = countIn(rows->value("AllChanged"));
    status.failed = countIn(rows->value("AllFailed"));
  }
}

void addAbandoned(Session& session, FleetStatus& status, std::int64_t now) {
  const auto rows =
      readRows(session.connection(), std::string("Select count(*) from ") + fleetRangeTable +
                                         ofJob(status.job) + " and State=1 and LeaseEnds<" +
                                         std::to_string(now));
  status.abandonedRanges = std::min(countIn(rows->value(0)), status.leasedRanges);
  status.leasedRanges -= status.abandonedRanges;
}

// The first range of the time that is looked at was under way before it.
void addRate(Session& session, FleetStatus& status, std::int64_t now, std::int64_t began) {
  const auto rows = readRows(
      session.connection(),
      std::string("Select count(*) as Ranges, sum(Series) as AllSeries, min(DoneAt) as Earliest "
                  "from ") +
          fleetRangeTable + ofJob(status.job) + " and State=2 and DoneAt>" +
          std::to_string(now - rateSeconds));
  const auto ranges = static_cast<double>(wholeOf(rows->value("Ranges")));
  if (ranges < 1) return;
  const std::int64_t first = ranges > 1 ? wholeOf(rows->value("Earliest")) : began;
  const double share = ranges > 1 ? (ranges - 1) / ranges : 1;
  const auto seconds = static_cast<double>(std::max<std::int64_t>(1, now - first));
  status.rate = static_cast<double>(wholeOf(rows->value("AllSeries"))) * share / seconds;
  if (*status.rate > 0)
    status.secondsLeft = static_cast<double>(status.series - status.done) / *status.rate;
}

FleetStatus statusIn(Session& session, const Recordset& job) {
  FleetStatus status;
  status.job = wholeOf(job.value("ID"));
  status.state = static_cast<FleetState>(wholeOf(job.value("State")));
  status.startedAt = toText(job.value("StartedAt"));
  status.endedAt = toText(job.value("EndedAt"));
  status.userName = toText(job.value("UserName"));
  status.version = toText(job.value("Version"));
  status.changedPercent = toDouble(job.value("ChangedPercent"));
  addRangeCounts(session, status);
  const std::int64_t now = secondsNow(session);
  addAbandoned(session, status, now);
  if (status.state == FleetState::running)
    addRate(session, status, now, wholeOf(job.value("BeganAt")));
  return status;
}

std::vector<FleetStatus> allStatus(Session& session, const std::string& condition) {
  std::vector<FleetStatus> list;
  if (!hasOwnTable(session.connection(), fleetJobTable)) return list;
  const auto rows = readRows(session.connection(), std::string("Select * from ") + fleetJobTable +
                                                       condition + " ORDER BY ID DESC");
  for (; !rows->atEnd(); rows->moveNext()) list.push_back(statusIn(session, *rows));
  return list;
}

FleetStatus statusOf(Session& session, FleetJobId job) {
  return allStatus(session, " where ID=" + std::to_string(job)).front();
}

RefitResult resultIn(const Recordset& row) {
  const auto text = [&](std::string_view name) { return toText(row.value(name)); };
  RefitResult result;
  result.task.meter.serial = text("SerialNumber");
  result.task.meter.adjusted = text("SerialNumberAdjusted");
  result.task.meter.calibration = isNull(row.value("ReCalID")) ? 0 : toInt32(row.value("ReCalID"));
  result.task.meter.id = static_cast<std::int32_t>(wholeOf(row.value("MeterID")));
  result.task.series = text("SeriesName");
  result.kind = static_cast<RefitResultKind>(wholeOf(row.value("Kind")));
  result.equation = text("Equation");
  result.shiftPercent = toDouble(row.value("ShiftPercent"));
  result.shiftRoshko = toDouble(row.value("ShiftRoshko"));
  result.isStored = wholeOf(row.value("Stored")) != 0;
  result.changedMeanwhile = wholeOf(row.value("ChangedMeanwhile")) != 0;
  result.reason = text("Reason");
  return result;
}

}  // namespace

FleetStatus startFleet(const std::string& location, const FleetOptions& options,
                       const OpenOptions& open) {
  Session session(location, open);
  requireUsable(options, session.location());
  return session.changing("fleet", "starting a job in '" + session.location() + "'", [&] {
    makeTables(session);
    if (const auto job = openJob(session)) {
      throw Exists(
          {"job " + std::to_string(job->id) + " in '" + session.location() + "' has not ended",
           session.location(), "wait for its end, or cancel it"});
    }
    const FleetJobId job = addJob(session, options);
    if (addRanges(session, job, options.rangeSize) == 0) {
      throw NotFound(
          {"'" + session.location() + "' has no series", session.location(), "import some first"});
    }
    return statusOf(session, job);
  });
}

std::vector<FleetStatus> fleetStatus(const std::string& location, const OpenOptions& open) {
  OpenOptions reading = open;
  reading.mode = Mode::read;
  Session session(location, reading);
  return session.asking("reading the jobs of '" + session.location() + "'",
                        [&] { return allStatus(session, ""); });
}

std::vector<RefitResult> fleetResults(const std::string& location, FleetJobId job,
                                      const std::vector<RefitResultKind>& kinds,
                                      std::size_t mostResults, const OpenOptions& open) {
  OpenOptions reading = open;
  reading.mode = Mode::read;
  Session session(location, reading);
  return session.asking("reading the results of '" + session.location() + "'", [&] {
    (void)storedJob(session, job);
    history::Ids numbers;
    for (const RefitResultKind kind : kinds) numbers.push_back(static_cast<std::int64_t>(kind));
    const std::string top = mostResults == 0 ? "" : "TOP " + std::to_string(mostResults) + " ";
    const auto rows = readRows(
        session.connection(),
        "Select " + top +
            "r.*, s.name as SeriesName, s.meterid as MeterID, m.SerialNumber, "
            "m.SerialNumberAdjusted, m.ReCalID from (" +
            fleetResultTable +
            " as r left join series as s on s.ID = r.SeriesID) left join meter as m on m.ID = "
            "s.meterid" +
            history::whereIn("Kind", numbers) + " and r.JobID=" + std::to_string(job) +
            " ORDER BY r.SeriesID");
    std::vector<RefitResult> results;
    for (; !rows->atEnd(); rows->moveNext()) results.push_back(resultIn(*rows));
    return results;
  });
}

FleetStatus setFleetState(const std::string& location, FleetState state, const OpenOptions& open) {
  Session session(location, open);
  if (state == FleetState::done) {
    throw BadData({"a job ends as done by itself", session.location(), "cancel it"});
  }
  return session.changing("fleet", "changing the job of '" + session.location() + "'", [&] {
    const auto job = openJob(session);
    if (!job) {
      throw NotFound(
          {"no job of '" + session.location() + "' is open", session.location(), "start one"});
    }
    const bool isEnd = state == FleetState::cancelled;
    session.connection().execute(
        std::string("Update ") + fleetJobTable +
        " set State=" + std::to_string(static_cast<std::int64_t>(state)) +
        (isEnd ? ", EndedAt=" + NameText::quoted(utcText()).literal() : "") +
        " where ID=" + std::to_string(job->id));
    return statusOf(session, job->id);
  });
}

}  // namespace pelmora::calibration
