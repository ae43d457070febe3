// The contents of a calibration stand's database, for a look before anything is imported.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/export.h>
#include <pelmora/types.h>

#include <string>
#include <vector>

namespace pelmora {

// The ids of all jobs with data points, in ascending order.
//
// Errors: Error if the connection is null or closed, or the database has no table DataPoint.
[[nodiscard]] PELMORA_API std::vector<std::string> standJobs(const ConnectionPtr& stand);

// The data points of one job: columns 0 to 36 are V1 to V37, one row per point in the order in
// which they were stored. Empty if the stand has no such job.
//
// JobRecordID: a whole number, as for an import.
// Errors: as for standJobs; Error 13 if JobRecordID is not a whole number.
[[nodiscard]] PELMORA_API ValueTable standPoints(const ConnectionPtr& stand,
                                                 const std::string& JobRecordID);

}  // namespace pelmora
