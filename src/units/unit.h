// Units of what a flow-meter calibration measures, and conversion between them.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <span>
#include <string>
#include <string_view>

namespace pelmora::units {

enum class Quantity {
  relative,
  frequency,
  viscosity,  // kinematic
  volume,
  volumeFlow,
  strouhal,  // pulses per volume
  roshko,    // frequency over kinematic viscosity
  temperature,
  pressure,
  length,
  expansion,  // relative, per temperature difference
};

// A value v is (v + offset) numerator / denominator in SI units. Both numbers are the decimal ones
// of the definition, so that a conversion rounds twice at most.
//
// Source: NIST SP 811 (2008), appendix B: 1 in = 25.4 mm, 1 US gallon = 231 in^3, 1 St = 1 cm^2/s,
//         t/K = (t/F + 459.67) 5/9, 1 psi = 4.4482216152605 N / (25.4 mm)^2. All of them are exact.
struct Unit {
  std::string_view symbol;
  Quantity quantity;
  double numerator = 1, denominator = 1, offset = 0;
};

// All known units, grouped by quantity.
[[nodiscard]] PELMORA_API std::span<const Unit> knownUnits();

// "viscosity", "volume flow" ...
[[nodiscard]] PELMORA_API std::string_view quantityName(Quantity quantity);

// The unit with this symbol, in exactly this spelling, or an alternative spelling: l and L, m3 and
// m^3, gal/min and gpm, pulses/gal and 1/gal.
//
// Errors: BadData for an unknown one; the remedy suggests known ones.
[[nodiscard]] PELMORA_API const Unit& unitOf(std::string_view symbol);

// Errors: BadData if the two units belong to different quantities.
[[nodiscard]] PELMORA_API double converted(double value, const Unit& from, const Unit& to);
// The same for a difference or an uncertainty: the offsets of temperature scales drop out.
[[nodiscard]] PELMORA_API double convertedDifference(double difference, const Unit& from,
                                                     const Unit& to);

struct Measure {
  double value = 0;
  const Unit* unit = nullptr;
};

// "0.05 %", "1.2E-6 m2/s": a number with a decimal point, then a unit, with or without blanks
// between them.
//
// Errors: BadData for text that is not a number, a missing or an unknown unit, values that are not
//         finite.
[[nodiscard]] PELMORA_API Measure readMeasure(std::string_view text);

}  // namespace pelmora::units
