// Rows whose owner is missing.
// SPDX-License-Identifier: MIT
#pragma once

#include "history/row_access.h"
#include "history/scope.h"

#include <cstddef>
#include <string>
#include <vector>

namespace pelmora::doctor {

// Orphans of one missing owner that can be kept and removed together.
struct OrphanGroup {
  history::Scope Rows;
  std::string Owner;  // "series 7", "meter 3"
};

// Rows of missing series, and everything of missing calibrations.
[[nodiscard]] std::vector<OrphanGroup> orphanGroups(const ConnectionPtr& curves);

// How many rows of all tables that groups hold.
[[nodiscard]] std::size_t rowCount(const ConnectionPtr& curves,
                                   const std::vector<OrphanGroup>& groups);

}  // namespace pelmora::doctor
