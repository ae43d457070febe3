// The number in one field of a sheet.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace pelmora::sheets {

// Digits between two signs that group thousands.
inline constexpr std::size_t groupSize = 3;

// Whether it is a decimal sign or groups thousands.
[[nodiscard]] constexpr bool isMark(char c) { return c == '.' || c == ','; }

struct NumberStyle {
  char decimal = '.';
  // Whether the other of '.' and ',' may group thousands. Blanks and apostrophes always may: they
  // have no other meaning.
  bool groupsThousands = false;
};

// Without blanks, tabs and no-break spaces at the ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);

// Without the sign at the start: +, - or the typographic minus, U+2212.
[[nodiscard]] std::string_view withoutSign(std::string_view text);

// "'" or " " if an apostrophe or a blank groups thousands in this number without its sign; empty if
// none does.
[[nodiscard]] std::string_view plainGrouping(std::string_view number);

// Blanks around the number, a sign (also U+2212) and an exponent are allowed; groups have three
// digits. Nothing for other text and for numbers that a double cannot hold. The result is the
// double that the same digits with a decimal point give.
[[nodiscard]] std::optional<double> fieldNumber(std::string_view text, NumberStyle style);

// What programs write instead of a missing number: "NaN", "n/a", "#DIV/0!".
[[nodiscard]] bool isMissingValue(std::string_view text);

// Whether it is a number in one style or another.
[[nodiscard]] bool looksLikeNumber(std::string_view text);

}  // namespace pelmora::sheets
