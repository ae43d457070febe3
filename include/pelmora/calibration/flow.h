// Volume flow that a calibrated meter shows in service, and the fluids in it.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/budget.h>
#include <pelmora/calibration/fitted_curve.h>
#include <pelmora/export.h>

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace pelmora::calibration {

// How the viscosity of a fluid depends on its temperature.
enum class ViscosityLawKind {
  table = 0,    // points, interpolated in the scale of ASTM D341
  d341 = 1,     // log10 log10 Z = a - b log10 T: constants a, b or two points and more
  andrade = 2,  // ln v = a + b / (T + c): constants a, b, c or two points and more
};

// "table", "d341", "andrade": the names at the command line and in the database.
[[nodiscard]] PELMORA_API const char* viscosityLawKey(ViscosityLawKind kind);
// Nothing for a name that none has.
[[nodiscard]] PELMORA_API std::optional<ViscosityLawKind> viscosityLawOf(const std::string& key);

struct ViscosityAt {
  double celsius = 0, centistokes = 0;
};

// A fluid by name. Either points (two or more) or constants with the range in which they hold.
//
// Units:  v in cSt, T in K.
struct FluidLaw {
  std::string name;
  ViscosityLawKind kind = ViscosityLawKind::table;
  std::vector<ViscosityAt> points{};
  std::vector<double> constants{};               // a, b and, for andrade, c
  double lowestCelsius = 0, highestCelsius = 0;  // of constants; of points, their own range
  std::string storedAt{}, userName{};

  // In cSt, and its relative change per K.
  //
  // Errors: BadData for an invalid law; OutOfRange beyond its range: a law is not extrapolated.
  [[nodiscard]] PELMORA_API double viscosity(double celsius) const;
  [[nodiscard]] PELMORA_API double changePerKelvin(double celsius) const;
};

// What is measured in service. Both frequencies for a meter with two rotors.
//
// Units:  Hz, cSt, degrees C; linear expansion of the meter's body per K.
struct ServiceReading {
  double frequency = 0;
  std::optional<double> frequencyB{};
  std::optional<double> viscosity{};  // absent: from the fluid, or from the quotient of the rotors
  double celsius = 190.0 / 9;         // 70 F, to which the numbers refer
  std::optional<double> expansionPerKelvin{};  // absent: stainless steel, 1.728E-5
  // What the instruments in service contribute, as a stand's file states it, without [flow].
  std::optional<StandStatement> instruments{};
  ReadAs reading = ReadAs::none;
};

struct RotorFlow {
  double roshko = 0, strouhal = 0, flow = 0;
  bool isExtrapolated = false;
};

// Units:  flow in volumes of Strouhal's unit per second: gal/s for pulses/gal.
struct ServiceFlow {
  double viscosity = 0;
  bool isViscosityOfQuotient = false;  // from both frequencies
  RotorFlow rotor;                     // rotor A, or the only one
  std::optional<RotorFlow> rotorB{};
  double flow = 0;
  // Of two rotors: how far the flow of B is from that of A, in per cent of the joint flow, and the
  // expanded uncertainty of that; beyond it, a rotor no longer follows its curve. Absent where the
  // viscosity comes from the quotient of the rotors, because they always agree there.
  std::optional<double> differencePercent{}, differenceUncertaintyPercent{};
  std::optional<Budget> budget{};  // of the flow; absent beyond the ends of a curve
};

// The flow by one rotor.
//
// Errors: BadData for values that are not above 0, a viscosity that is missing, a series whose y is
//         a quotient of rotors, and instruments that state a reference flow.
[[nodiscard]] PELMORA_API ServiceFlow flowOf(const FittedCurve& rotor,
                                             const ServiceReading& reading);
// Flows alone, of n readings.
//
// Units:  Hz, cSt, degrees F.  Shape: n values each.
// Errors: as above; OutOfRange, with the reading, beyond the ends of the curve.
[[nodiscard]] PELMORA_API std::vector<double> flowsOf(const FittedCurve& rotor,
                                                      std::span<const double> frequency,
                                                      std::span<const double> viscosity,
                                                      std::span<const double> fahrenheit);
// The flow by both rotors. quotient: the series Rotor Sum, needed where no viscosity is given.
//
// Errors: as above; BadData if the quotient occurs at several Roshko numbers; OutOfRange if it is
//         not on its curve.
[[nodiscard]] PELMORA_API ServiceFlow flowOf(const FittedCurve& rotorA, const FittedCurve& rotorB,
                                             const FittedCurve* quotient,
                                             const ServiceReading& reading);

}  // namespace pelmora::calibration
