// The pages that a file does not use.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sqlite/salvage/tree_walk.h"

namespace pelmora::sqlite::salvage {

// Claims them. False where their list is damaged; it is then not known which pages are free.
[[nodiscard]] bool claimFreePages(const PageFile& file, PageClaims& claims);

}  // namespace pelmora::sqlite::salvage
