// Values that may be absent as JSON: null if they are.
// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <cmath>
#include <optional>
#include <string>

namespace pelmora::report {

template <class T>
[[nodiscard]] nlohmann::json orNull(const std::optional<T>& value) {
  return value ? nlohmann::json(*value) : nlohmann::json();
}
[[nodiscard]] inline nlohmann::json orNull(const std::string& text) {
  return text.empty() ? nlohmann::json() : nlohmann::json(text);
}
// JSON has neither infinity nor NaN.
[[nodiscard]] inline nlohmann::json finiteOrNull(double number) {
  return std::isfinite(number) ? nlohmann::json(number) : nlohmann::json();
}

}  // namespace pelmora::report
