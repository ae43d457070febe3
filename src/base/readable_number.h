// Numbers as people read them: no locale, a decimal point.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <string>
#include <string_view>

namespace pelmora {

// A number with this many digits after the point; "-" if it is not finite.
[[nodiscard]] PELMORA_API std::string fixedText(double value, int decimals);
// A number with this many significant digits, in the shorter of the plain and the exponent form.
[[nodiscard]] PELMORA_API std::string significantText(double value, int digits);
// The shortest text that reads back as the same number.
[[nodiscard]] PELMORA_API std::string exactText(double value);
// As significantText(), with its zeros at the end, so that numbers of one size stand in line.
[[nodiscard]] PELMORA_API std::string alignedText(double value, int digits);
// A sentence whose decimal numbers of more than seven digits are rounded to six.
[[nodiscard]] PELMORA_API std::string withShortNumbers(std::string_view sentence);
// How many standard deviations something is off, without its sign: to a tenth below ten.
[[nodiscard]] PELMORA_API std::string sigmasText(double sigmas);
// Per cent with a sign, three digits after the point, fewer for large ones.
[[nodiscard]] PELMORA_API std::string percentText(double percent);

}  // namespace pelmora
