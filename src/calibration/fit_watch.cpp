// SPDX-License-Identifier: MIT
#include "calibration/fit_watch.h"

#include "calibration/session.h"

namespace pelmora::calibration {

std::string nameOf(const Fit& fit) {
  return fit.series.empty() ? "the points" : placeOf(fit.meter, fit.series);
}

steps::Observer stepsOf(const Observer& observer) {
  steps::Observer steps;
  steps.onStatus = observer.status;
  if (observer.progress) {
    steps.onProgress = [&observer](std::int16_t finished, std::int16_t of) {
      observer.progress(static_cast<std::size_t>(finished), static_cast<std::size_t>(of));
    };
  }
  return steps;
}

void requireGoOn(const Fit& fit, const std::stop_token& stop) {
  if (!stop.stop_requested()) return;
  throw Cancelled({"the fit of " + nameOf(fit) + " was cancelled", nameOf(fit), ""});
}

}  // namespace pelmora::calibration
