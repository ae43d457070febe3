// SPDX-License-Identifier: MIT
#include "units/unit.h"

#include "base/suggestion.h"
#include "base/text_flaw.h"
#include "base/trimmed_text.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>
#include <vector>

namespace pelmora::units {
namespace {

using calibration::BadData;

constexpr double gallon = 0.003785411784;  // m^3: 231 x 0.0254^3

constexpr std::array table{
    Unit{"1", Quantity::relative},
    Unit{"%", Quantity::relative, 1, 100},
    Unit{"ppm", Quantity::relative, 1, 1e6},
    Unit{"Hz", Quantity::frequency},
    Unit{"kHz", Quantity::frequency, 1000},
    Unit{"m2/s", Quantity::viscosity},
    Unit{"cSt", Quantity::viscosity, 1, 1e6},
    Unit{"mm2/s", Quantity::viscosity, 1, 1e6},
    Unit{"m3", Quantity::volume},
    Unit{"l", Quantity::volume, 1, 1000},
    Unit{"gal", Quantity::volume, gallon},
    Unit{"m3/s", Quantity::volumeFlow},
    Unit{"m3/h", Quantity::volumeFlow, 1, 3600},
    Unit{"l/s", Quantity::volumeFlow, 1, 1000},
    Unit{"l/min", Quantity::volumeFlow, 1, 60000},
    Unit{"l/h", Quantity::volumeFlow, 1, 3.6e6},
    Unit{"gpm", Quantity::volumeFlow, gallon, 60},
    Unit{"gal/s", Quantity::volumeFlow, gallon},
    Unit{"gal/h", Quantity::volumeFlow, gallon, 3600},
    Unit{"pulses/m3", Quantity::strouhal},
    Unit{"pulses/l", Quantity::strouhal, 1000},
    Unit{"pulses/gal", Quantity::strouhal, 1, gallon},
    Unit{"Hz/(m2/s)", Quantity::roshko},
    Unit{"Hz/cSt", Quantity::roshko, 1e6},
    Unit{"K", Quantity::temperature},
    Unit{"C", Quantity::temperature, 1, 1, 273.15},
    Unit{"F", Quantity::temperature, 5, 9, 459.67},
    Unit{"Pa", Quantity::pressure},
    Unit{"hPa", Quantity::pressure, 100},
    Unit{"kPa", Quantity::pressure, 1000},
    Unit{"MPa", Quantity::pressure, 1e6},
    Unit{"bar", Quantity::pressure, 1e5},
    Unit{"mbar", Quantity::pressure, 100},
    Unit{"psi", Quantity::pressure, 4.4482216152605, 0.00064516},
    Unit{"m", Quantity::length},
    Unit{"cm", Quantity::length, 1, 100},
    Unit{"mm", Quantity::length, 1, 1000},
    Unit{"in", Quantity::length, 0.0254},
    Unit{"1/K", Quantity::expansion},
    Unit{"1/F", Quantity::expansion, 9, 5},
};

// Other spellings of the symbols above.
constexpr std::array<std::pair<std::string_view, std::string_view>, 24> spellings{{
    {"m^2/s", "m2/s"},
    {"m²/s", "m2/s"},
    {"mm^2/s", "mm2/s"},
    {"mm²/s", "mm2/s"},
    {"m^3", "m3"},
    {"m³", "m3"},
    {"L", "l"},
    {"m^3/h", "m3/h"},
    {"m³/h", "m3/h"},
    {"m^3/s", "m3/s"},
    {"m³/s", "m3/s"},
    {"L/s", "l/s"},
    {"L/min", "l/min"},
    {"L/h", "l/h"},
    {"gal/min", "gpm"},
    {"1/gal", "pulses/gal"},
    {"1/l", "pulses/l"},
    {"1/L", "pulses/l"},
    {"pulses/L", "pulses/l"},
    {"1/m3", "pulses/m3"},
    {"°C", "C"},
    {"°F", "F"},
    {"1/C", "1/K"},
    {"1/°F", "1/F"},
}};

std::string quoted(std::string_view text) { return "'" + shortened(text) + "'"; }

void requireOneQuantity(const Unit& from, const Unit& to) {
  if (from.quantity == to.quantity) return;
  throw BadData({quoted(from.symbol) + " is a unit of " + std::string(quantityName(from.quantity)) +
                     ", and " + quoted(to.symbol) + " is one of " +
                     std::string(quantityName(to.quantity)),
                 "", "choose two units of the same quantity"});
}

}  // namespace

std::span<const Unit> knownUnits() { return table; }

std::string_view quantityName(Quantity quantity) {
  switch (quantity) {
    case Quantity::relative: return "relative size";
    case Quantity::frequency: return "frequency";
    case Quantity::viscosity: return "kinematic viscosity";
    case Quantity::volume: return "volume";
    case Quantity::volumeFlow: return "volume flow";
    case Quantity::strouhal: return "pulses per volume";
    case Quantity::roshko: return "frequency over viscosity";
    case Quantity::temperature: return "temperature";
    case Quantity::pressure: return "pressure";
    case Quantity::length: return "length";
    case Quantity::expansion: break;
  }
  return "expansion";
}

const Unit& unitOf(std::string_view symbol) {
  const auto* spelled = std::find_if(spellings.begin(), spellings.end(),
                                     [&](const auto& pair) { return pair.first == symbol; });
  const std::string_view wanted = spelled == spellings.end() ? symbol : spelled->second;
  const auto* unit = std::find_if(table.begin(), table.end(),
                                  [&](const Unit& each) { return each.symbol == wanted; });
  if (unit != table.end()) return *unit;
  std::vector<std::string> names;
  for (const Unit& each : table) names.emplace_back(each.symbol);
  throw BadData({quoted(symbol) + " is not a known unit", "",
                 suggestion(std::string(shortened(symbol)), names)});
}

double converted(double value, const Unit& from, const Unit& to) {
  requireOneQuantity(from, to);
  if (&from == &to) return value;
  return (value + from.offset) * (from.numerator * to.denominator) /
             (from.denominator * to.numerator) -
         to.offset;
}

double convertedDifference(double difference, const Unit& from, const Unit& to) {
  requireOneQuantity(from, to);
  if (&from == &to) return difference;
  return difference * (from.numerator * to.denominator) / (from.denominator * to.numerator);
}

Measure readMeasure(std::string_view text) {
  text = trimmed(text, " \t");
  double value = 0;
  const auto [end, trouble] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (trouble != std::errc() || !std::isfinite(value)) {
    throw BadData({quoted(text) + " does not start with a number", "",
                   "write a number with a decimal point and its unit, such as 0.05 %"});
  }
  const std::string_view symbol = trimmed({end, text.data() + text.size()}, " \t");
  if (symbol.empty()) {
    throw BadData({quoted(text) + " has no unit", "", "write the unit behind the number"});
  }
  return {value, &unitOf(symbol)};
}

}  // namespace pelmora::units
