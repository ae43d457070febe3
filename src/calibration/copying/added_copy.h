// Meters with everything that belongs to them, added to what another curve database holds.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/copy.h>

namespace pelmora::calibration {

[[nodiscard]] ProofSheet copyAdded(const Database& from, const Database& to,
                                   const CopyOptions& options, const Observer& observer);

}  // namespace pelmora::calibration
