// What a host may ask of a curve database before it works with it.
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
  std::vector<std::string> JobRecordIDs;  // jobs whose points it holds
  std::size_t Points = 0;
};

// The set-ups of a meter calibration by stand and id, the order in which an import derives series
// from them: the first one fills raw part 1.
//
// MeterID: MeterInfo::MeterID.  Errors: Error where the connection cannot be used.
[[nodiscard]] PELMORA_API std::vector<CalSetupInfo> calSetups(const ConnectionPtr& curves,
                                                              std::int32_t MeterID);

// Does nothing where every table of a curve database is there.
//
// Errors: Error whose description names the table that is missing; 0x80004005 where it is locked.
PELMORA_API void requireCurveTables(const ConnectionPtr& curves);

// Does nothing where rows of the open curve database can be changed at this moment. Changes
// nothing.
//
// Errors: Error 0x80004005 where another user holds the lock; another one where the file or its
//         folder may not be written.
PELMORA_API void requireWritable(const ConnectionPtr& curves);

}  // namespace pelmora
