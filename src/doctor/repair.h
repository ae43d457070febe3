// Mending what is safe to mend.
// SPDX-License-Identifier: MIT
#pragma once

#include "history/kept_change.h"

#include <cstdint>
#include <vector>

namespace pelmora::doctor {

// Makes missing indexes and tables of the history, and removes orphaned rows once `change` has kept
// them. Nothing is stored before change.commit(). Returns the entries of what was removed.
std::vector<std::int64_t> repair(const ConnectionPtr& curves, history::KeptChange& change);

}  // namespace pelmora::doctor
