// SPDX-License-Identifier: MIT
#include "calibration/fleet/leases.h"

#include "base/time_text.h"
#include "history/row_access.h"
#include "store/curve_schema.h"
#include "store/name_text.h"
#include "store/reading.h"

#include <pelmora/calibration/fleet.h>

#include <algorithm>
#include <ctime>

namespace pelmora::calibration {
namespace {

using history::wholeOf;

std::string digits(std::int64_t number) { return std::to_string(number); }
std::string digits(RangeState state) { return digits(static_cast<std::int64_t>(state)); }

std::string theRange(const LeasedRange& range) {
  return " where ID=" + digits(range.id) + " and Token=" + digits(range.token);
}

std::string updateOf(const char* table) { return std::string("Update ") + table + " set "; }

RangeLeases* leasesOf(const Session& session) {
  return dynamic_cast<RangeLeases*>(session.curves().get());
}

bool isIn(Session& session, const LeasedRange& range, RangeState state) {
  const auto rows = readRows(session.connection(),
                             std::string("Select State from ") + fleetRangeTable + theRange(range));
  return !rows->atEnd() && wholeOf(rows->value(0)) == static_cast<std::int64_t>(state);
}

bool jobIsIn(Session& session, std::int64_t job, std::initializer_list<FleetState> states) {
  const auto rows = readRows(session.connection(), std::string("Select State from ") +
                                                       fleetJobTable + " where ID=" + digits(job));
  if (rows->atEnd()) return false;
  const auto now = static_cast<FleetState>(wholeOf(rows->value(0)));
  for (const FleetState state : states) {
    if (state == now) return true;
  }
  return false;
}

// The first range in one of the states, with its token.
std::optional<LeasedRange> firstRange(Session& session, std::int64_t job,
                                      const std::string& condition) {
  const auto rows =
      readRows(session.connection(), std::string("Select TOP 1 ID, Token, AfterID, LastID from ") +
                                         fleetRangeTable + " where JobID=" + digits(job) + " and " +
                                         condition + " ORDER BY ID");
  if (rows->atEnd()) return std::nullopt;
  return LeasedRange{.id = wholeOf(rows->value(0)),
                     .job = job,
                     .token = wholeOf(rows->value(1)),
                     .after = wholeOf(rows->value(2)),
                     .last = wholeOf(rows->value(3))};
}

std::optional<LeasedRange> leaseInTurn(Session& session, std::int64_t job,
                                       const std::string& worker, std::chrono::seconds time) {
  Transaction transaction(session.curves());
  if (!jobIsIn(session, job, {FleetState::running})) return std::nullopt;
  const std::int64_t now = secondsNow(session);
  auto range = firstRange(session, job, "State=" + digits(RangeState::free));
  if (!range) {
    range = firstRange(session, job,
                       "State=" + digits(RangeState::leased) + " and LeaseEnds<" + digits(now));
  }
  if (!range) return std::nullopt;
  ++range->token;
  session.connection().execute(
      updateOf(fleetRangeTable) + "State=" + digits(RangeState::leased) +
      ", Token=" + digits(range->token) + ", Worker=" + NameText::quoted(worker).literal() +
      ", LeaseEnds=" + digits(now + time.count()) + " where ID=" + digits(range->id));
  transaction.commit();
  return range;
}

bool extendInTurn(Session& session, const LeasedRange& range, std::chrono::seconds time) {
  Transaction transaction(session.curves());
  if (!isIn(session, range, RangeState::leased) ||
      !jobIsIn(session, range.job, {FleetState::running, FleetState::paused})) {
    return false;
  }
  session.connection().execute(updateOf(fleetRangeTable) + "LeaseEnds=" +
                               digits(secondsNow(session) + time.count()) + theRange(range));
  transaction.commit();
  return true;
}

void endJobWithLastRange(Session& session, std::int64_t job) {
  const bool isOver = !firstRange(session, job, "State=" + digits(RangeState::free)) &&
                      !firstRange(session, job, "State=" + digits(RangeState::leased));
  if (!isOver) return;
  session.connection().execute(
      updateOf(fleetJobTable) + "State=" + digits(static_cast<std::int64_t>(FleetState::done)) +
      ", EndedAt=" + NameText::quoted(utcText()).literal() + " where ID=" + digits(job));
}

std::string leasing(const Session& session) {
  return "leasing series of '" + session.location() + "'";
}

}  // namespace

std::int64_t secondsNow(Session& session) {
  if (RangeLeases* leases = leasesOf(session)) return leases->secondsSince1970();
  return static_cast<std::int64_t>(std::time(nullptr));
}

void limitChange(Session& session, std::chrono::seconds time) {
  using namespace std::chrono_literals;
  // What a busy machine takes between two statements.
  if (RangeLeases* leases = leasesOf(session)) leases->limitTransaction(std::max(time, 30s));
}

std::optional<LeasedRange> leaseRange(Session& session, std::int64_t job, const std::string& worker,
                                      std::chrono::seconds time) {
  return session.asking(leasing(session), [&] {
    RangeLeases* leases = leasesOf(session);
    return leases != nullptr ? leases->leaseRange(job, worker, time)
                             : leaseInTurn(session, job, worker, time);
  });
}

bool extendLease(Session& session, const LeasedRange& range, std::chrono::seconds time) {
  return session.asking(leasing(session), [&] {
    RangeLeases* leases = leasesOf(session);
    return leases != nullptr ? leases->extendLease(range, time)
                             : extendInTurn(session, range, time);
  });
}

void releaseRange(Session& session, const LeasedRange& range) {
  session.asking(leasing(session), [&] {
    session.connection().execute(updateOf(fleetRangeTable) + "State=" + digits(RangeState::free) +
                                 theRange(range) + " and State=" + digits(RangeState::leased));
  });
}

// Leases are given without a turn to write, so that the token may still change between the first
// look and the update, which locks the row.
bool holdRange(Session& session, const LeasedRange& range) {
  if (!isIn(session, range, RangeState::leased) ||
      !jobIsIn(session, range.job, {FleetState::running, FleetState::paused})) {
    return false;
  }
  session.connection().execute(updateOf(fleetRangeTable) + "State=" + digits(RangeState::leased) +
                               theRange(range));
  return isIn(session, range, RangeState::leased);
}

void endRange(Session& session, const LeasedRange& range, const RangeCounts& counts) {
  const auto number = [](std::size_t count) { return std::to_string(count); };
  session.connection().execute(updateOf(fleetRangeTable) + "State=" + digits(RangeState::done) +
                               ", DoneAt=" + digits(secondsNow(session)) + ", Stored=" +
                               number(counts.stored) + ", Changed=" + number(counts.changed) +
                               ", Failed=" + number(counts.failed) + theRange(range));
  endJobWithLastRange(session, range.job);
}

}  // namespace pelmora::calibration
