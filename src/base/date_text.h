// Dates as texts.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <ctime>
#include <string>
#include <string_view>

namespace pelmora {

// The date in the short form of the process's C locale, the year always with four digits:
// 11/21/2026 in the default locale.
[[nodiscard]] std::string shortDateText(const std::tm& date);

// Today, local time.
[[nodiscard]] std::string todayText();

// Whether the text is a day of the calendar as ISO 8601 writes it: 2026-11-21.
[[nodiscard]] PELMORA_API bool isDay(std::string_view text);

}  // namespace pelmora
