// Dates as the locale writes them.
// SPDX-License-Identifier: MIT
#pragma once

#include <ctime>
#include <string>

namespace pelmora {

// The date in the short form of the process's C locale, the year always with four digits:
// 11/21/2026 in the default locale.
[[nodiscard]] std::string shortDateText(const std::tm& date);

// Today, local time.
[[nodiscard]] std::string todayText();

}  // namespace pelmora
