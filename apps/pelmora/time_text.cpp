// SPDX-License-Identifier: MIT
#include "apps/pelmora/time_text.h"

#include "apps/pelmora/strict_number.h"

#include <array>
#include <cstdlib>
#include <ctime>

namespace pelmora::cli {

std::string timeText(std::int64_t secondsAgo) {
  std::time_t seconds = std::time(nullptr);
  if (const char* fixed = std::getenv("SOURCE_DATE_EPOCH"); fixed != nullptr) {
    seconds = static_cast<std::time_t>(strictInteger(fixed).value_or(seconds));
  }
  seconds -= static_cast<std::time_t>(secondsAgo);
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  std::array<char, 40> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &utc);
  return text.data();
}

}  // namespace pelmora::cli
