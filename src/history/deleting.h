// Removing a series or a calibration with everything that belongs to it.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include "history/kept_change.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace pelmora::history {

struct DeletedRows {
  std::string Table;
  std::size_t Rows = 0;
};

struct DeleteOutcome {
  std::int64_t KeptAs = 0;        // the entry that restores it
  std::vector<DeletedRows> Rows;  // tables without rows are left out
};

// How many rows the scope has, by table; tables without rows are left out.
[[nodiscard]] PELMORA_API std::vector<DeletedRows> rowsOf(const ConnectionPtr& curves,
                                                          const Scope& scope);

// Removes all rows of the scope once `change` has kept them. Nothing is stored before
// change.commit().
[[nodiscard]] PELMORA_API DeleteOutcome removeKept(const ConnectionPtr& curves, KeptChange& change,
                                                   const Scope& scope);

}  // namespace pelmora::history
