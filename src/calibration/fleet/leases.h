// Leases of ranges, whatever the engine.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/session.h"
#include "store/range_leases.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace pelmora::calibration {

// A range as it is stored: never renumber.
enum class RangeState : std::int64_t { free = 0, leased = 1, done = 2 };

struct RangeCounts {
  std::size_t stored = 0, changed = 0, failed = 0;
};

// As RangeLeases; with an engine that has no such role, in a transaction of its own.
[[nodiscard]] std::optional<LeasedRange> leaseRange(Session& session, std::int64_t job,
                                                    const std::string& worker,
                                                    std::chrono::seconds time);
[[nodiscard]] bool extendLease(Session& session, const LeasedRange& range,
                               std::chrono::seconds time);
// With an engine that can: a worker that is frozen in the open change holds up nobody for longer.
void limitChange(Session& session, std::chrono::seconds time);
[[nodiscard]] std::int64_t secondsNow(Session& session);

// Gives a range back at once, where the lease is still the caller's.
void releaseRange(Session& session, const LeasedRange& range);

// Inside the transaction that stores the results: from now on nobody else can lease the range until
// the transaction has ended. False if the lease is no longer the caller's or the job was cancelled.
[[nodiscard]] bool holdRange(Session& session, const LeasedRange& range);
// Ends a range that is held, and the job with its last range.
void endRange(Session& session, const LeasedRange& range, const RangeCounts& counts);

}  // namespace pelmora::calibration
