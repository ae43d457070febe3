// A stand's readings, checked before anything is imported.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/stand.h>

#include <functional>
#include <span>
#include <string>

namespace pelmora::calibration {

// The first job of the runs that has no readings of rotor B; empty if all jobs have them.
//
// Errors: NotFound for a job that the stand does not have; BadData for a reading that is missing,
//         is a text, is negative or divides by zero, with job, point, column and line; for a job of
//         more than 32,767 points; and for no runs. Other failures if the stand cannot be read.
//         What goOn throws, which is called before each point.
[[nodiscard]] std::string checkReadings(const Stand& stand, std::span<const StandRun> runs,
                                        const std::function<void()>& goOn);

}  // namespace pelmora::calibration
