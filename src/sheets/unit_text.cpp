// SPDX-License-Identifier: MIT
#include "sheets/unit_text.h"

#include "base/text_case.h"
#include "sheets/field_number.h"
#include "units/unit.h"

#include <algorithm>
#include <array>
#include <utility>

namespace pelmora::sheets {
namespace {

// In addition to the spellings that units::unitOf() knows.
constexpr std::array<std::pair<std::string_view, std::string_view>, 16> spellings{{
    {"lpm", "l/min"},
    {"lph", "l/h"},
    {"l/hr", "l/h"},
    {"m3/hr", "m3/h"},
    {"gph", "gal/h"},
    {"usgpm", "gpm"},
    {"us gpm", "gpm"},
    {"1/s", "Hz"},
    {"s-1", "Hz"},
    {"pulses/s", "Hz"},
    {"deg c", "C"},
    {"degc", "C"},
    {"celsius", "C"},
    {"deg f", "F"},
    {"degf", "F"},
    {"fahrenheit", "F"},
}};

// Units without a conversion here that a line of units may also hold.
constexpr std::array<std::string_view, 16> otherUnits{
    "s",    "ms",  "min", "h",     "pulses", "imp", "counts", "bar",
    "mbar", "kpa", "psi", "kg/m3", "g/cm3",  "v",   "ma",     "mm"};

// Inside one pair of brackets of any kind, if there is one.
std::string_view unwrapped(std::string_view text) {
  text = trimmed(text);
  if (text.size() < 2) return text;
  const char first = text.front(), last = text.back();
  const bool isWrapped = (first == '[' && last == ']') || (first == '(' && last == ')') ||
                         (first == '{' && last == '}');
  return isWrapped ? trimmed(text.substr(1, text.size() - 2)) : text;
}

// Where the bracket that closes at the end of the text opens.
std::size_t openingOf(std::string_view text) {
  const char close = text.empty() ? '\0' : text.back();
  if (close != ']' && close != ')') return std::string_view::npos;
  const char open = close == ']' ? '[' : '(';
  int depth = 0;
  for (std::size_t i = text.size(); i-- > 0;) {
    if (text[i] == close) ++depth;
    if (text[i] == open && --depth == 0) return i;
  }
  return std::string_view::npos;
}

}  // namespace

std::string_view unitSymbol(std::string_view text) {
  const std::string_view symbol = unwrapped(text);
  if (symbol.empty()) return {};
  for (const units::Unit& unit : units::knownUnits()) {
    if (unit.symbol == symbol) return unit.symbol;
  }
  for (const units::Unit& unit : units::knownUnits()) {
    if (equalNames(unit.symbol, symbol)) return unit.symbol;
  }
  for (const auto& [spelling, known] : spellings) {
    if (equalNames(spelling, symbol)) return known;
  }
  try {
    return units::unitOf(symbol).symbol;
  } catch (const Error&) {
    return {};
  }
}

Column columnOf(std::string_view headerField) {
  const std::string_view text = trimmed(headerField);
  Column column{std::string(text), std::string(text), {}};
  const auto split = [&](std::size_t nameEnd, std::string_view unit) {
    column.name = trimmed(text.substr(0, nameEnd));
    while (column.name.ends_with(',') || column.name.ends_with('/')) {
      column.name.pop_back();
      column.name = trimmed(std::string(column.name));
    }
    const std::string_view symbol = unitSymbol(unit);
    column.unit = symbol.empty() ? unwrapped(unit) : symbol;
  };
  if (const std::size_t open = openingOf(text); open != std::string_view::npos && open > 0) {
    split(open, text.substr(open));
    return column;
  }
  for (const std::string_view sign : {" / ", "/ ", ", ", " in "}) {
    const std::size_t at = text.find(sign);
    if (at == std::string_view::npos || at == 0) continue;
    const std::string_view unit = text.substr(at + sign.size());
    if (unit == "1" || unitSymbol(unit).empty()) continue;
    split(at, unit);
    return column;
  }
  // "flow_gpm" and "Flow gpm"
  const std::size_t last = text.find_last_of(" _");
  if (last != std::string_view::npos && last > 0 && text.substr(last + 1) != "1" &&
      !unitSymbol(text.substr(last + 1)).empty())
    split(last, text.substr(last + 1));
  return column;
}

bool areUnits(const std::vector<std::string>& fields) {
  bool hasUnit = false;
  for (const std::string& field : fields) {
    const std::string_view text = trimmed(field);
    if (text.empty() || text == "-" || text == "1") continue;
    if (looksLikeNumber(text) || isMissingValue(text)) return false;
    const auto isText = [&](std::string_view unit) { return equalNames(unit, text); };
    hasUnit = hasUnit || !unitSymbol(text).empty() || unwrapped(text) != text ||
              std::ranges::any_of(otherUnits, isText);
  }
  return hasUnit;
}

}  // namespace pelmora::sheets
