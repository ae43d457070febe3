// What a calibration stand's database holds, to look at before anything of it is imported.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/export.h>
#include <pelmora/types.h>

#include <string>
#include <vector>

namespace pelmora {

// The identities of all jobs with data points, ascending.
//
// Errors: Error where the connection is null or closed, or the database has no table DataPoint.
[[nodiscard]] PELMORA_API std::vector<std::string> standJobs(const ConnectionPtr& stand);

// The data points of one job: columns 0 to 36 are V1 to V37, one row per point in the order in
// which they were stored. Empty where the stand has no such job.
//
// JobRecordID: a whole number, as the import takes it.
// Errors: as standJobs; Error 13 where JobRecordID is no whole number.
[[nodiscard]] PELMORA_API ValueTable standPoints(const ConnectionPtr& stand,
                                                 const std::string& JobRecordID);

}  // namespace pelmora
