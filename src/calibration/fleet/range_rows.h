// The series of a range as they are stored, read in few statements.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/session.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace pelmora::calibration {

// Series with ids above `after`, up to `last`.
struct IdRange {
  std::int64_t after = 0, last = 0;
};

struct SeriesRows {
  std::int64_t id = 0;
  RefitTask task;
  // False if it has left-out points or rows that are not as they should be: then it has to be read
  // by itself, and all below is incomplete.
  bool isPlain = true;
  StoredSeries stored;
  bool hasResults = false;  // anything that a fit of before has left
  std::uint64_t basis = 0;  // fingerprint of everything that was read of it
};

// Calls `visit` with the series in slices, so that the memory that it needs does not grow with
// their number, until it returns false. Each slice is of one moment.
//
// Errors: Locked, Unusable.
void readSeries(const Session& session, const IdRange& range,
                const std::function<bool(std::vector<SeriesRows>&)>& visit);

}  // namespace pelmora::calibration
