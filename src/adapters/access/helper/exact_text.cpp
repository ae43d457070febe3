// SPDX-License-Identifier: MIT
#include "adapters/access/helper/exact_text.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace pelmora::access {
namespace {

constexpr std::size_t decimalWords = 4;
constexpr unsigned mostScale = 28;
using Words = std::array<std::uint32_t, decimalWords>;  // the most significant one first

// Divides in place; returns the remainder.
unsigned divideByTen(Words& words) {
  std::uint64_t rest = 0;
  for (std::uint32_t& word : words) {
    const std::uint64_t part = rest << 32 | word;
    word = static_cast<std::uint32_t>(part / 10);
    rest = part % 10;
  }
  return static_cast<unsigned>(rest);
}

std::string withPoint(std::string digits, std::size_t scale, bool isNegative) {
  if (digits.size() <= scale) digits.insert(0, scale + 1 - digits.size(), '0');
  if (scale > 0) digits.insert(digits.size() - scale, 1, '.');
  return isNegative ? "-" + digits : digits;
}

template <class... Numbers>
std::string formatted(const char* format, Numbers... numbers) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), format, numbers...);
  return text.data();
}

void appendHex(std::string& text, unsigned char byte, const char* digits) {
  text += digits[byte >> 4];
  text += digits[byte & 0xF];
}

}  // namespace

std::string currencyText(std::int64_t value) {
  const bool isNegative = value < 0;
  const auto plain = static_cast<std::uint64_t>(value);
  return withPoint(std::to_string(isNegative ? ~plain + 1 : plain), 4, isNegative);
}

std::string decimalText(Bytes field, unsigned scale) {
  if (scale > mostScale)
    throw Damage("it has more digits after the decimal point than a decimal can have");
  Words words{};
  for (std::size_t i = 0; i < words.size(); ++i) words[i] = u32(field, 1 + 4 * i);
  std::string digits;
  while (words != Words{})
    digits.insert(digits.begin(), static_cast<char>('0' + divideByTen(words)));
  const bool isNegative = !digits.empty() && (field[0] & 0x80) != 0;
  return withPoint(digits.empty() ? "0" : digits, scale, isNegative);
}

std::string dateText(double days) {
  constexpr double first = -657434;  // 1 January 100
  constexpr double end = 2958466;    // 1 January 10000
  constexpr std::int64_t millisecondsADay = 86'400'000;
  if (days <= first - 1 || days >= end) throw Damage("it is not a date");
  double day = 0;
  const double fraction = std::fabs(std::modf(days, &day));
  auto whole = static_cast<std::int64_t>(day);
  std::int64_t time = std::llround(fraction * static_cast<double>(millisecondsADay));
  if (time >= millisecondsADay) {  // rounded up to midnight
    time -= millisecondsADay;
    ++whole;
  }
  if (static_cast<double>(whole) < first || static_cast<double>(whole) >= end)
    throw Damage("it is not a date");
  using namespace std::chrono;
  const year_month_day date(sys_days(year(1899) / December / 30) + std::chrono::days(whole));
  std::string text =
      formatted("%04d-%02u-%02u", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
  const int seconds = static_cast<int>(time / 1000);
  if (time != 0)
    text += formatted(" %02d:%02d:%02d", seconds / 3600, seconds / 60 % 60, seconds % 60);
  if (time % 1000 != 0) text += formatted(".%03d", static_cast<int>(time % 1000));
  return text;
}

std::string identityText(Bytes field) {
  constexpr const char* digits = "0123456789ABCDEF";
  // The first three groups are little-endian numbers.
  constexpr std::array<std::size_t, 16> order{3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  std::string text = "{";
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    appendHex(text, part(field, order[i], 1)[0], digits);
  }
  return text + "}";
}

std::string hexText(Bytes field) {
  std::string text = "0x";
  for (const unsigned char byte : field) appendHex(text, byte, "0123456789abcdef");
  return text;
}

}  // namespace pelmora::access
