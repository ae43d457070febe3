// What stands between the marks of a date literal.
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace pelmora::sql {

// The date as "yyyy-mm-dd", followed by " hh:mm:ss" where a time other than midnight is given.
// Nothing if the text is not a date.
//
// "m/d/y" and "m-d-y"; day and month change places where the month would be beyond 12. "y-m-d" and
// "y/m/d" where the first number has four digits. "d.m.y". Years 0-29 are 2000-2029, 30-99 are
// 1930-1999.
[[nodiscard]] std::optional<std::string> isoDate(std::string_view literal);

}  // namespace pelmora::sql
