// SPDX-License-Identifier: MIT
#include "base/date_text.h"

#include <array>
#include <string_view>

namespace pelmora {
namespace {

std::string formatted(const std::tm& date, const char* format) {
  std::array<char, 128> buffer;
  const std::size_t length = std::strftime(buffer.data(), buffer.size(), format, &date);
  return {buffer.data(), length};
}

bool replaceFirst(std::string& text, std::string_view part, std::string_view with) {
  const auto at = text.find(part);
  if (at == std::string::npos) return false;
  text.replace(at, part.size(), with);
  return true;
}

// The locale's short form as a format with a full year: a date whose parts cannot be confused is
// written out and its parts are put back to what they stand for. Many locales write two digits of
// the year, which a database reads as a guess at the century.
std::string shortDateFormat() {
  std::tm sample{};
  sample.tm_year = 1988 - 1900;
  sample.tm_mon = 11 - 1;
  sample.tm_mday = 22;
  std::string format = formatted(sample, "%x");
  const bool year = replaceFirst(format, "1988", "%Y") || replaceFirst(format, "88", "%Y");
  const bool month = replaceFirst(format, "11", "%m");
  const bool day = replaceFirst(format, "22", "%d");
  return year && month && day ? format : "%x";
}

}  // namespace

std::string shortDateText(const std::tm& date) {
  return formatted(date, shortDateFormat().c_str());
}

std::string todayText() {
  const std::time_t now = std::time(nullptr);
  std::tm date{};
#if defined(_WIN32)
  localtime_s(&date, &now);
#else
  localtime_r(&now, &date);
#endif
  return shortDateText(date);
}

}  // namespace pelmora
