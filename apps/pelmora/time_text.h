// The time as files and tables keep it.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace pelmora::cli {

// Now, or so many seconds ago, in UTC, ISO 8601 without fractions: 2026-11-21T13:40:00Z. The
// environment variable SOURCE_DATE_EPOCH, in seconds since 1970, takes the clock's place, so that
// what is written can be repeated.
[[nodiscard]] std::string timeText(std::int64_t secondsAgo = 0);

}  // namespace pelmora::cli
