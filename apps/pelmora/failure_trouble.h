// The one place where a failure of the service becomes an error line and an exit code.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/trouble.h"

#include <pelmora/calibration/failure.h>

namespace pelmora::cli {

[[nodiscard]] Trouble troubleOf(const calibration::Failure& failure);

}  // namespace pelmora::cli
