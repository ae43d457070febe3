// Points in time as texts, under the command line's own name.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/time_text.h"

namespace pelmora::cli {

[[nodiscard]] inline std::string timeText(std::int64_t secondsAgo = 0) {
  return utcText(secondsAgo);
}

}  // namespace pelmora::cli
