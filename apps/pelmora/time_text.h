// The time as files and tables keep it.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::cli {

// Now in UTC, ISO 8601 without fractions: 2026-11-21T13:40:00Z. The environment variable SOURCE_DATE_EPOCH,
// in seconds since 1970, takes the clock's place, so that what is written can be repeated.
[[nodiscard]] std::string timeText();

}  // namespace pelmora::cli
