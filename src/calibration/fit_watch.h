// What the steps of one fit share: its name in messages, its observer, and when to stop.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/steps/observer.h"

#include <pelmora/calibration/fit.h>

#include <string>

namespace pelmora::calibration {

// The series and its meter, or "the points" if they came from no database.
[[nodiscard]] std::string nameOf(const Fit& fit);

// Refers to `observer`, which must outlive it.
[[nodiscard]] steps::Observer stepsOf(const Observer& observer);

// Errors: Cancelled at a stop.
void requireGoOn(const Fit& fit, const std::stop_token& stop);
inline void requireGoOn(const Fit& fit, const Observer& observer) {
  requireGoOn(fit, observer.stop);
}

}  // namespace pelmora::calibration
