// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/strict_number.h"

#include "apps/pelmora/trouble.h"
#include "base/text_flaw.h"
#include "base/trimmed_text.h"

#include <charconv>
#include <cmath>

namespace pelmora::cli {
namespace {

std::string_view withoutBlanksAndPlus(std::string_view text) {
  text = trimmed(text, " \t");
  const bool plusOnly = text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+';
  return plusOnly ? text.substr(1) : text;
}

template <class Number>
std::optional<Number> whole(std::string_view text) {
  text = withoutBlanksAndPlus(text);
  Number value{};
  const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (code != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
  return value;
}

}  // namespace

std::optional<double> strictNumber(std::string_view text) {
  const auto value = whole<double>(text);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<std::int64_t> strictInteger(std::string_view text) {
  return whole<std::int64_t>(text);
}

std::string notANumber(std::string_view text) {
  if (withoutBlanksAndPlus(text).empty()) return "the field is empty";
  const std::string quoted = "'" + shortened(text) + "'";
  if (text.size() > shortened(text).size()) return quoted + " is not a number";
  std::string withPoint(text);
  const std::size_t comma = withPoint.find(',');
  if (comma != std::string::npos) withPoint[comma] = '.';
  if (comma != std::string::npos && strictNumber(withPoint)) {
    return quoted + " is not a number (decimals take a point: " + withPoint + ")";
  }
  if (whole<double>(text)) return quoted + " is not a finite number";
  return quoted + " is not a number";
}

double numberOption(const std::string& option, const std::string& text) {
  if (const auto value = strictNumber(text)) return *value;
  throw Trouble(ExitCode::usage, option + ": " + notANumber(text), "give a number such as 12.5");
}

std::int64_t integerOption(const std::string& option, const std::string& text, std::int64_t lowest,
                           std::int64_t highest) {
  const auto value = strictInteger(text);
  if (value && *value >= lowest && *value <= highest) return *value;
  throw Trouble(
      ExitCode::usage, option + ": '" + shortened(text) + "' is not allowed",
      "give a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
}

}  // namespace pelmora::cli
