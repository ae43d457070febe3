// Numbers as people read them: no locale, a decimal point.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace pelmora::report {

// A number with so many digits behind the point; "-" where it is not finite.
[[nodiscard]] std::string fixedText(double value, int decimals);
// A number with so many significant digits, in the shorter of the plain and the exponent form.
[[nodiscard]] std::string significantText(double value, int digits);
// The same with its zeros at the end, so that numbers of one size stand in line.
[[nodiscard]] std::string alignedText(double value, int digits);
// A sentence whose decimal numbers of more than seven digits are rounded to six.
[[nodiscard]] std::string withShortNumbers(std::string_view sentence);
// Per cent with a sign, three digits behind the point, fewer for large ones.
[[nodiscard]] std::string percentText(double percent);

}  // namespace pelmora::report
