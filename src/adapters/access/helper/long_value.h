// Values that may be longer than a row: memos and binary objects.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/helper/page_file.h"

#include <vector>

namespace pelmora::access {

// The bytes that a row's field of such a column refers to.
// Errors: Damage, also if their number differs from the one in the field.
[[nodiscard]] std::vector<unsigned char> longValue(const PageFile& file, Bytes field);

}  // namespace pelmora::access
