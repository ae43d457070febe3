// Kinematic viscosity of a fluid over temperature.
// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace pelmora::flow {

// The scale in which the viscosity of a liquid is nearly a straight line.
enum class ViscosityScale {
  // log10 log10 Z over log10 T, Z = v + 0.7 + exp(-1.47 - 1.84 v - 0.51 v^2), for hydrocarbons of
  // 0.21 cSt and more. Source: ASTM D341.
  d341,
  // ln v over 1 / (T + c). Source: Andrade, Philosophical Magazine 17 (1934) 497-511, 698-732;
  // c other than 0: Vogel, Physikalische Zeitschrift 22 (1921) 645.
  andrade,
};

struct ViscosityPoint {
  double kelvin = 0, centistokes = 0;
};

// Valid between these temperatures, and nowhere else: a law is not extrapolated.
struct TemperatureRange {
  double lowest = 0, highest = 0;  // K
};

// Straight lines between points in the scale of a law, exactly through each point. Two points make
// the law itself; more of them make a table that is interpolated in the law's scale.
class ViscosityLaw {
 public:
  // points: two or more, in any order. `shift` is c of the Andrade scale, in K.
  //
  // Errors: BadData for fewer than two points, temperatures that repeat or are not above 0 K (or
  //         -c), viscosities that are not above 0 (below 0.21 cSt in the D341 scale), a viscosity
  //         that rises with temperature, an empty range.
  ViscosityLaw(ViscosityScale scale, std::vector<ViscosityPoint> points, TemperatureRange range,
               double shift = 0);
  // The range of the points.
  ViscosityLaw(ViscosityScale scale, std::vector<ViscosityPoint> points, double shift = 0);

  // log10 log10 Z = a - b log10 T, T in K.
  [[nodiscard]] static ViscosityLaw fromD341(double a, double b, TemperatureRange range);
  // ln v = a + b / (T + c), v in cSt, T in K.
  [[nodiscard]] static ViscosityLaw fromAndrade(double a, double b, double c,
                                                TemperatureRange range);

  // In cSt.
  //
  // Errors: OutOfRange beyond the range.
  [[nodiscard]] double operator()(double kelvin) const;
  // Relative change per K; negative. Errors: as above.
  [[nodiscard]] double changePerKelvin(double kelvin) const;
  [[nodiscard]] const TemperatureRange& range() const { return range_; }

 private:
  struct Node {
    double across, up;  // scaled temperature and viscosity
  };
  [[nodiscard]] double across(double kelvin) const;
  [[nodiscard]] double unchecked(double kelvin) const;
  ViscosityScale scale_;
  TemperatureRange range_;
  double shift_;
  std::vector<Node> nodes_;  // by rising temperature
};

}  // namespace pelmora::flow
