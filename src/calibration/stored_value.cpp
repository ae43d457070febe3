// SPDX-License-Identifier: MIT
#include "calibration/stored_value.h"

#include "base/text_case.h"
#include "base/text_flaw.h"

#include <array>
#include <charconv>
#include <cmath>

namespace pelmora::calibration {
namespace {

// Up to here, a double represents every whole number exactly.
constexpr double mostWhole = 9007199254740992.0;

// The number that is the whole text.
template <class Number>
std::optional<Number> numberIn(const std::string& text) {
  Number number{};
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return number;
}

std::optional<Value> wholeOf(const Value& value) {
  if (const auto* real = std::get_if<double>(&value)) {
    if (*real != std::trunc(*real) || std::fabs(*real) > mostWhole) return std::nullopt;
    return Value(static_cast<std::int64_t>(*real));
  }
  if (const auto* text = std::get_if<std::string>(&value)) {
    const auto number = numberIn<std::int64_t>(*text);
    return number ? std::optional<Value>(*number) : std::nullopt;
  }
  return value;
}

// Tables store no other numbers.
bool isFiniteOrNoReal(const Value& value) {
  const auto* real = std::get_if<double>(&value);
  return real == nullptr || std::isfinite(*real);
}

std::optional<Value> realOf(const Value& value) {
  if (const auto* whole = std::get_if<std::int64_t>(&value)) {
    const auto real = static_cast<double>(*whole);
    return std::fabs(real) <= mostWhole ? std::optional<Value>(real) : std::nullopt;
  }
  if (const auto* text = std::get_if<std::string>(&value)) {
    const auto number = numberIn<double>(*text);
    return number && std::isfinite(*number) ? std::optional<Value>(*number) : std::nullopt;
  }
  return isFiniteOrNoReal(value) ? std::optional(value) : std::nullopt;
}

}  // namespace

std::optional<Value> storedValue(const Value& value, OwnColumnType type) {
  switch (type) {
    case OwnColumnType::key:
    case OwnColumnType::whole: return wholeOf(value);
    case OwnColumnType::real: return realOf(value);
    case OwnColumnType::text:
      if (std::holds_alternative<std::string>(value)) return value;
      return Value(valueText(value));
    case OwnColumnType::anything: break;
  }
  return isFiniteOrNoReal(value) ? std::optional(value) : std::nullopt;
}

std::string valueText(const Value& value) {
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return std::to_string(*whole);
  if (const auto* real = std::get_if<double>(&value)) {
    // Unlike exactText(), this keeps infinities and NaN apart.
    std::array<char, 64> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), *real).ptr};
  }
  const auto* text = std::get_if<std::string>(&value);
  return text == nullptr ? std::string() : shortened(*text);
}

std::optional<std::size_t> columnOf(const SchemaTable& table, std::string_view name) {
  for (std::size_t i = 0; i < table.Columns.size(); ++i) {
    if (equalNames(table.Columns[i].Name, name)) return i;
  }
  return std::nullopt;
}

}  // namespace pelmora::calibration
