// The LIKE of the dialect.
// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace pelmora::sql {

// '%' stands for any characters, '_' for one, "[a-f]" for one of a set, "[!a-f]" for one outside
// it; all else for itself without regard to case. A '[' that is never closed stands for itself.
[[nodiscard]] bool matchesPattern(std::string_view text, std::string_view pattern);

}  // namespace pelmora::sql
