// Numbers in files and options: a decimal point, no locale, nothing left over.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pelmora::cli {

// Blanks around the number and a leading '+' are allowed. Nothing for infinite and NaN.
[[nodiscard]] std::optional<double> strictNumber(std::string_view text);
[[nodiscard]] std::optional<std::int64_t> strictInteger(std::string_view text);

// What is wrong with a text that cannot be read as a number, and how to write it.
[[nodiscard]] std::string notANumber(std::string_view text);

// The value of an option. Errors: Trouble usage that names the option.
[[nodiscard]] double numberOption(const std::string& option, const std::string& text);
[[nodiscard]] std::int64_t integerOption(const std::string& option, const std::string& text,
                                         std::int64_t lowest, std::int64_t highest);

}  // namespace pelmora::cli
