// A whole curve database into an empty one, every row with its id.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/copy.h>

namespace pelmora::calibration {

[[nodiscard]] ProofSheet copyWhole(const Database& from, const Database& to,
                                   const CopyOptions& options, const Observer& observer);

}  // namespace pelmora::calibration
