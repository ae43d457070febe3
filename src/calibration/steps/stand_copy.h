// Copying a stand's measurements under a calibration set-up of the curve database.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/steps/observer.h"
#include "store/connection.h"
#include "store/name_text.h"

#include <cstdint>
#include <functional>
#include <string>

namespace pelmora::calibration::steps {

// How a step waits while another user has locked the database: it breathes, says so, breathes, and
// tries again.
struct LockWait {
  // The curve database's file in the text; asked at every try.
  std::function<std::string()> fileName;
  // Asked after a failed try; false ends the waiting with the lock's error. Empty: without limit.
  std::function<bool()> mayGoOn = {};
};

// Opens the connection, unless it is open.
void openUnlocked(Connection& connection, const LockWait& wait, const Observer& observer = {});

// Removes the points of a set-up.
void removeMeasurements(Connection& curves, std::int32_t CalSetupID, const LockWait& wait,
                        const Observer& observer = {});

// One or two jobs of a stand on their way to a set-up.
struct StandJobs {
  std::int32_t CalSetupID;
  std::string JobID_RawA, JobID_RawB;  // B counts where it is neither empty nor "0" nor A
  // The path of the curve database's file, for the stand's engine; asked at every try.
  std::function<NameText()> path;
};

// Has the stand's engine insert the points of the jobs. The stand's connection is open and stays
// so.
//
// Errors: a second job always ends in one: its statement is not one that the engine accepts; the
//         first job's points are copied by then.
void copyMeasurements(Connection& stand, const StandJobs& jobs, const LockWait& wait,
                      const Observer& observer = {});

}  // namespace pelmora::calibration::steps
