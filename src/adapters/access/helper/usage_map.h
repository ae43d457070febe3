// Which pages belong to a table.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/helper/page_file.h"

#include <vector>

namespace pelmora::access {

// The numbers of the pages that a table's usage map marks, in ascending order. Errors: Damage.
[[nodiscard]] std::vector<std::uint32_t> pagesInMap(const PageFile& file, Bytes map);

}  // namespace pelmora::access
