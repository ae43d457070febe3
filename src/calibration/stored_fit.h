// Storing the result of a fit, and checking whether it still belongs to what is stored.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/session.h"

#include <cstdint>
#include <vector>

namespace pelmora::calibration {

// Fingerprints of what a fit depends on: the calibration and the series by name and id, and the raw
// parts; with the curve, merged points, report and settings of the last fit for a refit.
[[nodiscard]] std::uint64_t pointsBasis(const Session& session, const Meter& meter,
                                        std::int32_t seriesID);
[[nodiscard]] std::uint64_t curveBasis(const Session& session, const Meter& meter,
                                       std::int32_t seriesID);

// Puts curve, merged points, report and settings of an accepted fit in place of the series' own,
// which the history keeps. Needs an open change.
HistoryEntryId storeFit(Session& session, const Fit& fit);

// Those of the fits whose series have anything of an earlier one.
[[nodiscard]] std::vector<const Fit*> thoseWithResults(const Session& session,
                                                       const std::vector<const Fit*>& fits);

// As storeFit(), for many series, each of them once, in few statements. `replaced`:
// thoseWithResults().
void storeFits(Session& session, const std::vector<const Fit*>& fits,
               const std::vector<const Fit*>& replaced);

}  // namespace pelmora::calibration
