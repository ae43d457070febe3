// Jobs as they are stored.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/session.h"

#include <pelmora/calibration/fleet.h>

#include <optional>
#include <string>

namespace pelmora::calibration {

struct FleetJob {
  FleetJobId id = 0;
  FleetState state = FleetState::running;
  std::string version;
  RefitOptions options;  // threshold, change, isStrict
};

// Adds a running job. Its id.
FleetJobId addJob(Session& session, const FleetOptions& options);
// The job that runs or is paused, if there is one.
[[nodiscard]] std::optional<FleetJob> openJob(Session& session);
// Any job. Errors: NotFound.
[[nodiscard]] FleetJob storedJob(Session& session, FleetJobId id);

}  // namespace pelmora::calibration
