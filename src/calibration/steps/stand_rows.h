// Copying a stand's measurements through two open connections.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"

#include <cstdint>
#include <functional>
#include <string>

namespace pelmora::calibration::steps {

// Replaces the points of a set-up by those of a job. Both connections stay as they are, so that the
// copy belongs to a transaction of the curve database, and the two may be of different engines.
//
// job: a whole number. goOn: called for each row; what it throws ends the copy.  Errors: what the
// connections throw; Error 13 for any other text.
void copyStandRows(Connection& stand, Connection& curves, std::int32_t CalSetupID,
                   const std::string& job, const std::function<void()>& goOn = {});

}  // namespace pelmora::calibration::steps
