// One range of a job: fitted, and stored where its lease still holds.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/fleet/leases.h"
#include "calibration/refit/refit_one.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace pelmora::calibration {

struct FittedSeries {
  std::int64_t id = 0;
  RefitCurve curve;
  bool isPlain = false;     // it was read together with others
  bool hasResults = false;  // of an earlier fit, which the new curve replaces
  std::uint64_t basis = 0;  // fingerprint of what was read together with others
};

// Fits the series of the range. Nothing if `goesOn`, asked before each one, ends it.
[[nodiscard]] std::optional<std::vector<FittedSeries>> fitRange(
    const Database& lab, Session& session, const LeasedRange& range, const RefitOptions& options,
    const std::function<bool()>& goesOn);

// Stores curves, results and the end of the range in one transaction. Nothing, and nothing stored,
// if the lease is another worker's by now or the job was cancelled. If this worker is frozen
// meanwhile, a server undoes the transaction after `longest`.
//
// Errors: Locked, Unusable; nothing is stored.
[[nodiscard]] std::optional<RangeCounts> storeRange(const Database& lab, Session& session,
                                                    const LeasedRange& range,
                                                    const RefitOptions& options,
                                                    std::chrono::seconds longest,
                                                    std::vector<FittedSeries>& series);

}  // namespace pelmora::calibration
