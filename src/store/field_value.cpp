// SPDX-License-Identifier: MIT
#include "store/field_value.h"

#include "base/number_text.h"
#include "base/run_time_error.h"

#include <cmath>
#include <limits>
#include <sstream>

namespace pelmora {
namespace {

template <class Integer>
Integer toInteger(const Value& value) {
  const double rounded = std::nearbyint(toDouble(value));
  if (!(rounded >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
        rounded <= static_cast<double>(std::numeric_limits<Integer>::max()))) {
    throw makeError(RunTimeError::overflow);
  }
  return static_cast<Integer>(rounded);
}

}  // namespace

bool isNull(const Value& value) { return std::holds_alternative<std::monostate>(value); }

double toDouble(const Value& value) {
  if (const auto* number = std::get_if<double>(&value)) return *number;
  if (const auto* number = std::get_if<std::int64_t>(&value)) return static_cast<double>(*number);
  if (const auto* text = std::get_if<std::string>(&value)) return numberFromText(*text);
  throw makeError(RunTimeError::invalidNull);
}

std::optional<double> toOptionalDouble(const Value& value) {
  if (isNull(value)) return std::nullopt;
  return toDouble(value);
}

Value toValue(const std::optional<double>& number) { return number ? Value(*number) : Value(); }

double numberOrNan(const Value& value) {
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return static_cast<double>(*whole);
  const auto* real = std::get_if<double>(&value);
  return real == nullptr ? std::numeric_limits<double>::quiet_NaN() : *real;
}

std::int32_t toInt32(const Value& value) { return toInteger<std::int32_t>(value); }
std::int16_t toInt16(const Value& value) { return toInteger<std::int16_t>(value); }

std::string toText(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* number = std::get_if<std::int64_t>(&value)) return numberText(*number);
  if (const auto* number = std::get_if<double>(&value)) return numberText(*number);
  return {};
}

std::vector<std::string> toLines(const Value& value) {
  std::vector<std::string> list;
  std::istringstream lines(toText(value));
  for (std::string line; std::getline(lines, line);) list.push_back(line);
  return list;
}

}  // namespace pelmora
