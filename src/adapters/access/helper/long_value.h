// Values that may be longer than a row: memos and binary objects.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/helper/page_file.h"

#include <vector>

namespace pelmora::access {

// The bytes that a row's field of such a column leads to.
// Errors: Damage, also where their number is not what the field says.
[[nodiscard]] std::vector<unsigned char> longValue(const PageFile& file, Bytes field);

}  // namespace pelmora::access
