// A stand's readings, checked before anything is imported.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/stand.h>

#include <span>
#include <string>

namespace pelmora::calibration {

// Of the runs' jobs the first that has no readings of rotor B; empty if all have them.
//
// Errors: NotFound for a job that the stand does not have; BadData for a reading that is missing,
//         is a text or divides by zero, with job, point and column, for a job of more than 32,767
//         points, and for no runs.
[[nodiscard]] std::string checkReadings(const Stand& stand, std::span<const StandRun> runs);

}  // namespace pelmora::calibration
