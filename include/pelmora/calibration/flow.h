// Volume flow that a calibrated meter shows in service, and its fluids.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/budget.h>
#include <pelmora/calibration/fitted_curve.h>
#include <pelmora/export.h>

#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace pelmora::calibration {

// How the viscosity of a fluid depends on its temperature.
enum class ViscosityLawKind {
  table = 0,    // points, interpolated in the scale of ASTM D341
  d341 = 1,     // log10 log10 Z = a - b log10 T: constants a, b, or two or more points
  andrade = 2,  // ln v = a + b / (T + c): constants a, b, c, or two or more points
};

// "table", "d341", "andrade": the names at the command line and in the database.
[[nodiscard]] PELMORA_API const char* viscosityLawKey(ViscosityLawKind kind);
// Nothing for an unknown name.
[[nodiscard]] PELMORA_API std::optional<ViscosityLawKind> viscosityLawOf(const std::string& key);

struct ViscosityAt {
  double celsius = 0, centistokes = 0;
};

// A fluid and its law, which has either points (two or more) or constants with their range.
//
// Units:  v in cSt, T in K.
struct FluidLaw {
  std::string name;
  ViscosityLawKind kind = ViscosityLawKind::table;
  std::vector<ViscosityAt> points{};
  std::vector<double> constants{};               // a, b and, for andrade, c
  double lowestCelsius = 0, highestCelsius = 0;  // of constants; points have their own range
  std::string storedAt{}, userName{};

  // In cSt, and its relative change per K.
  //
  // Errors: BadData for an invalid law; OutOfRange beyond its range, since laws are not
  //         extrapolated.
  [[nodiscard]] PELMORA_API double viscosity(double celsius) const;
  [[nodiscard]] PELMORA_API double changePerKelvin(double celsius) const;
};

// What is measured in service; both frequencies for a meter with two rotors.
//
// Units:  Hz, cSt, degrees C; linear expansion of the meter's body per K.
struct ServiceReading {
  double frequency = 0;
  std::optional<double> frequencyB{};
  std::optional<double> viscosity{};  // absent: from the fluid, or from the quotient of the rotors
  double celsius = 190.0 / 9;         // 70 F, to which the numbers refer
  std::optional<double> expansionPerKelvin{};  // absent: stainless steel, 1.728E-5
  // What the instruments in service contribute, in the form of a stand's file without [flow].
  std::optional<StandStatement> instruments{};
  ReadAs reading = ReadAs::none;
};

struct RotorFlow {
  double roshko = 0, strouhal = 0, flow = 0;
  bool isExtrapolated = false;
};

// Units:  Roshko, Strouhal in those of the curves.
struct ServiceFlow {
  // Of the flows: the volume of Strouhal's unit per second.
  std::string unit = "gal/s";
  double viscosity = 0;
  bool isViscosityOfQuotient = false;  // from both frequencies
  RotorFlow rotor;                     // rotor A, or the only one
  std::optional<RotorFlow> rotorB{};
  double flow = 0;
  // Of two rotors: the flow of B minus that of A, in per cent of the joint flow, and its expanded
  // uncertainty. A difference beyond it means that a rotor no longer follows its curve. Absent
  // where the viscosity comes from the quotient of the rotors, because they always agree then.
  std::optional<double> differencePercent{}, differenceUncertaintyPercent{};
  std::optional<Budget> budget{};  // of the flow; absent beyond the ends of a curve
};

// The flow from one rotor.
//
// Errors: BadData for values that are not above 0, a missing viscosity, a series whose y is a
//         quotient of rotors, and instruments that state a reference flow.
[[nodiscard]] PELMORA_API ServiceFlow flowOf(const FittedCurve& rotor,
                                             const ServiceReading& reading);
// The flows of n readings, without their uncertainty.
//
// Units:  Hz, cSt, degrees F; flows in volumes of Strouhal's unit per second.
// Shape:  n values each.
// Errors: as above; BadData for different numbers of values; OutOfRange, naming the reading, beyond
// the ends of the curve; Cancelled at the stop.
[[nodiscard]] PELMORA_API std::vector<double> flowsOf(const FittedCurve& rotor,
                                                      std::span<const double> frequency,
                                                      std::span<const double> viscosity,
                                                      std::span<const double> fahrenheit,
                                                      const std::stop_token& stop = {});
// The flow from both rotors. quotient: the series Rotor Sum, needed if no viscosity is given.
//
// Errors: as above; BadData if the quotient occurs at several Roshko numbers; OutOfRange if it is
//         not on its curve.
[[nodiscard]] PELMORA_API ServiceFlow flowOf(const FittedCurve& rotorA, const FittedCurve& rotorB,
                                             const FittedCurve* quotient,
                                             const ServiceReading& reading);

}  // namespace pelmora::calibration
