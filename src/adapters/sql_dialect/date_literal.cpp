// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/date_literal.h"

#include "base/trimmed_text.h"

#include <array>
#include <cstdio>
#include <utility>

namespace pelmora::sql {

namespace {

struct Number {
  int value = 0;
  int digits = 0;
};

std::optional<Number> takeNumber(std::string_view& text) {
  Number number;
  while (!text.empty() && text.front() >= '0' && text.front() <= '9') {
    if (++number.digits > 4) return std::nullopt;
    number.value = number.value * 10 + (text.front() - '0');
    text.remove_prefix(1);
  }
  if (number.digits == 0) return std::nullopt;
  return number;
}

bool takeSeparator(std::string_view& text, char separator) {
  if (text.empty() || text.front() != separator) return false;
  text.remove_prefix(1);
  return true;
}

int daysIn(int month, int year) {
  constexpr std::array<int, 12> days{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool isLeap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return days[static_cast<std::size_t>(month - 1)] + (month == 2 && isLeap ? 1 : 0);
}

// "h:m" or "h:m:s", with AM or PM or without; the seconds of the day.
std::optional<int> secondsOf(std::string_view text) {
  const auto hours = takeNumber(text);
  if (!hours || !takeSeparator(text, ':')) return std::nullopt;
  const auto minutes = takeNumber(text);
  Number seconds;
  if (takeSeparator(text, ':')) {
    const auto found = takeNumber(text);
    if (!found) return std::nullopt;
    seconds = *found;
  }
  text = trimmed(text);
  int hour = hours->value;
  if (!text.empty()) {
    const bool isPm = text == "PM" || text == "pm";
    if ((!isPm && text != "AM" && text != "am") || hour < 1 || hour > 12) return std::nullopt;
    hour = hour % 12 + (isPm ? 12 : 0);
  }
  if (!minutes || hour > 23 || minutes->value > 59 || seconds.value > 59) return std::nullopt;
  return (hour * 60 + minutes->value) * 60 + seconds.value;
}

}  // namespace

std::optional<std::string> isoDate(std::string_view literal) {
  std::string_view text = trimmed(literal);
  const auto first = takeNumber(text);
  if (!first || text.empty()) return std::nullopt;
  const char separator = text.front();
  if (separator != '/' && separator != '-' && separator != '.') return std::nullopt;
  text.remove_prefix(1);
  const auto second = takeNumber(text);
  if (!second || !takeSeparator(text, separator)) return std::nullopt;
  const auto third = takeNumber(text);
  if (!third) return std::nullopt;

  Number year = *third;
  int month = first->value;
  int day = second->value;
  if (first->digits == 4) {
    year = *first;
    month = second->value;
    day = third->value;
  } else if (separator == '.' || month > 12) {
    std::swap(month, day);
  }
  if (year.digits == 3) return std::nullopt;
  if (year.digits < 3) year.value += year.value < 30 ? 2000 : 1900;
  if (year.value < 100 || month < 1 || month > 12 || day < 1 || day > daysIn(month, year.value)) {
    return std::nullopt;
  }

  int seconds = 0;
  if (!text.empty()) {
    if (text.front() != ' ') return std::nullopt;
    const auto found = secondsOf(trimmed(text));
    if (!found) return std::nullopt;
    seconds = *found;
  }
  std::array<char, 64> iso{};
  std::snprintf(iso.data(), iso.size(), "%04d-%02d-%02d", year.value, month, day);
  std::string result = iso.data();
  if (seconds != 0) {
    std::snprintf(iso.data(), iso.size(), " %02d:%02d:%02d", seconds / 3600, seconds / 60 % 60,
                  seconds % 60);
    result += iso.data();
  }
  return result;
}

}  // namespace pelmora::sql
