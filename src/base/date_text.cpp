// SPDX-License-Identifier: MIT
#include "base/date_text.h"

#include <array>
#include <charconv>

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

bool isDay(std::string_view text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return false;
  const auto number = [&](std::size_t at, std::size_t count) {
    int value = -1;
    const char* end = text.data() + at + count;
    const auto [stop, trouble] = std::from_chars(text.data() + at, end, value);
    return trouble == std::errc() && stop == end ? value : -1;
  };
  const int year = number(0, 4), month = number(5, 2), day = number(8, 2);
  if (year < 1 || month < 1 || month > 12 || day < 1) return false;
  constexpr std::array days{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool isLeap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return day <= days[static_cast<std::size_t>(month - 1)] + (month == 2 && isLeap ? 1 : 0);
}

}  // namespace pelmora
