// What a host can find out about a curve database before it works with it.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/export.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace pelmora {

// A calibration set-up of a meter: one fluid on one stand.
struct CalSetupInfo {
  std::int32_t ID = 0, Stand = 0, Position = 0;
  std::string Fluid, Operator, DateTaken;
  std::vector<std::string> JobRecordIDs;  // the jobs whose points it holds
  std::size_t Points = 0;
};

// The set-ups of a meter calibration, ordered by stand and id. An import derives series from them
// in this order: the first one fills raw part 1.
//
// MeterID: MeterInfo::MeterID.  Errors: Error if the connection cannot be used.
[[nodiscard]] PELMORA_API std::vector<CalSetupInfo> calSetups(const ConnectionPtr& curves,
                                                              std::int32_t MeterID);

// Checks that the database has every table of a curve database.
//
// Errors: Error that names the missing table; 0x80004005 if the database is locked.
PELMORA_API void requireCurveTables(const ConnectionPtr& curves);

// Checks that rows of the open curve database can be changed at this moment. The check itself
// changes nothing.
//
// Errors: Error 0x80004005 if another user holds the lock; another Error if the file or its
//         folder is not writable.
PELMORA_API void requireWritable(const ConnectionPtr& curves);

}  // namespace pelmora
