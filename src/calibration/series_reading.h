// Reading everything that is stored for a series, once.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/session.h"

#include <cstdint>
#include <string>

namespace pelmora::calibration {

struct SeriesReading {
  StoredSeries stored;
  std::uint64_t basis = 0;  // as curveBasis() makes it; stored.basis is as pointsBasis() makes it
};

// Errors: NotFound with the names that are similar; BadData, Damaged, Locked, Unusable.
[[nodiscard]] SeriesReading readStored(Session& session, const Meter& meter,
                                       const std::string& series);

}  // namespace pelmora::calibration
