// Points in time as texts.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <cstdint>
#include <string>

namespace pelmora {

// The time now, or this many seconds ago, in UTC: 2026-11-21T14:05:09Z. The environment variable
// SOURCE_DATE_EPOCH, seconds since 1970, stands for now where it is set, so that what is written
// can be reproduced.
[[nodiscard]] PELMORA_API std::string utcText(std::int64_t secondsAgo = 0);

}  // namespace pelmora
