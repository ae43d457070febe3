// SPDX-License-Identifier: MIT
#include "base/time_text.h"

#include <array>
#include <charconv>
#include <cstdlib>
#include <ctime>
#include <string_view>

namespace pelmora {
namespace {

std::time_t now() {
  const char* fixed = std::getenv("SOURCE_DATE_EPOCH");
  if (fixed == nullptr) return std::time(nullptr);
  const std::string_view text = fixed;
  std::int64_t seconds = 0;
  const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), seconds);
  const bool isNumber = code == std::errc() && end == text.data() + text.size();
  return isNumber ? static_cast<std::time_t>(seconds) : std::time(nullptr);
}

}  // namespace

std::string utcText(std::int64_t secondsAgo) {
  const std::time_t seconds = now() - static_cast<std::time_t>(secondsAgo);
  std::tm utc{};
#if defined(_WIN32)
  gmtime_s(&utc, &seconds);
#else
  gmtime_r(&seconds, &utc);
#endif
  std::array<char, 40> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &utc);
  return text.data();
}

}  // namespace pelmora
