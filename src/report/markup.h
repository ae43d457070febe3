// Text inside HTML and XML.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/markup_text.h"

#include <string>

namespace pelmora::report {

using pelmora::escaped;

// A coordinate in px with at most two decimals, as short as it can be.
[[nodiscard]] std::string coordinate(double value);

// A number in its shortest exact form; "NaN" where it is not finite.
[[nodiscard]] std::string exactNumber(double value);

}  // namespace pelmora::report
