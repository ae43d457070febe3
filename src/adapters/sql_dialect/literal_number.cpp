// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/literal_number.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace pelmora::sql {

std::optional<double> numberOf(std::string_view text) {
  double value = 0;
  const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (code != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) {
    return std::nullopt;
  }
  return value;
}

std::optional<std::string> wholeNumberText(std::string_view literal) {
  constexpr double largestExact = 9007199254740992.0;
  const auto value = numberOf(literal);
  if (!value || std::trunc(*value) != *value || std::abs(*value) > largestExact)
    return std::nullopt;
  return std::to_string(static_cast<long long>(*value));
}

}  // namespace pelmora::sql
