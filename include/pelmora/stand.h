// The contents of a calibration stand's database, for a look before anything is imported.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/export.h>
#include <pelmora/patience.h>
#include <pelmora/sheet.h>
#include <pelmora/types.h>

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace pelmora {

struct OpenedStand {
  ConnectionPtr connection;
  // For a text file: how it was read, and the lines of each job's points. Empty for a database.
  std::optional<sheets::Recognised> recognised;
  std::map<std::string, std::vector<std::size_t>> lines;
};

// Opens a stand's database, or its export as a text file in the given style.
//
// Errors: Error, as for openDatabase(); SheetError for the contents of a text file and for a
//         workbook.
[[nodiscard]] PELMORA_API OpenedStand openStand(const std::string& location,
                                                const Patience& patience = {},
                                                const sheets::Style& style = {});

// The ids of all jobs with data points, in ascending order.
//
// Errors: Error if the connection is null or closed, or the database has no table DataPoint.
[[nodiscard]] PELMORA_API std::vector<std::string> standJobs(const ConnectionPtr& stand);

// The data points of one job: columns 0 to 36 are V1 to V37, one row per point in the order in
// which they were stored. Empty if the stand has no such job.
//
// JobRecordID: a whole number, as for an import.
// goOn: called before each row; what it throws ends the reading.
// Errors: as for standJobs; Error 13 if JobRecordID is not a whole number.
[[nodiscard]] PELMORA_API ValueTable standPoints(const ConnectionPtr& stand,
                                                 const std::string& JobRecordID,
                                                 const std::function<void()>& goOn = {});

}  // namespace pelmora
