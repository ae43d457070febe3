// Bringing back what a change has replaced.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include "history/entries.h"

#include <cstdint>
#include <string>
#include <vector>

namespace pelmora::history {

// Numbers of the errors that this folder raises on purpose.
inline constexpr std::int32_t noSuchEntry = static_cast<std::int32_t>(0x80040301U);
inline constexpr std::int32_t standsInTheWay = static_cast<std::int32_t>(0x80040302U);

struct RestoredTable {
  std::string Name;
  std::size_t RowsBefore = 0, RowsNow = 0;
};

struct RestoreOutcome {
  Entry Restored;
  std::int64_t KeptAs =
      0;  // the entry of what the restored rows have replaced; 0 where that was nothing
  std::vector<RestoredTable> Tables;
};

// Puts the rows of the entry, with their ids and in their order, in place of those that its scope
// has now; what it replaces is kept by `change` as an entry first. Nothing is stored before
// change.commit().
//
// Errors: Error noSuchEntry; standsInTheWay if the calibration or series is gone that the rows
// belong to, or
//         another one has its name or id by now.
[[nodiscard]] PELMORA_API RestoreOutcome restore(const ConnectionPtr& curves, KeptChange& change,
                                                 std::int64_t entryID);

}  // namespace pelmora::history
