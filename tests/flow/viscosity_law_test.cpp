// Viscosity laws against published values.
// SPDX-License-Identifier: MIT
#include "flow/viscosity_law.h"

#include "tests/support/complaint.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace pelmora::flow {
namespace {

using test::complaint;

constexpr double kelvin(double celsius) { return celsius + 273.15; }

// Water at 0.101325 MPa: viscosity and density by IAPWS R12-08 and R6-95, as tables print them.
constexpr double waterAt(double microPascalSecond, double density) {
  return microPascalSecond / density;
}
const std::vector<ViscosityPoint> water{{kelvin(0.01), waterAt(1791.1, 999.79)},
                                        {kelvin(20), waterAt(1001.6, 998.21)},
                                        {kelvin(40), waterAt(652.7, 992.22)},
                                        {kelvin(60), waterAt(466.0, 983.20)},
                                        {kelvin(80), waterAt(354.0, 971.79)}};

TEST(viscosity_table, interpolates_water_in_the_scale_of_its_law) {
  const ViscosityLaw law(ViscosityScale::andrade, water, -137.546);
  // 890.0 uPa s and 997.05 kg/m3 at 25 C; 546.5 and 988.03 at 50 C.
  EXPECT_NEAR(law(kelvin(25)), waterAt(890.0, 997.05), 0.002 * 0.8926);
  EXPECT_NEAR(law(kelvin(50)), waterAt(546.5, 988.03), 0.002 * 0.5531);
  for (const ViscosityPoint& point : water)
    EXPECT_NEAR(law(point.kelvin), point.centistokes, 1e-12);
}

// The constants of water's dynamic viscosity in mPa s, Viswanath, Natarajan: Data book on the
// viscosity of liquids (1989): 1.0016 mPa s at 20 C, 0.653 at 40 C (IAPWS).
TEST(andrade_law, has_the_published_viscosity_of_water) {
  const ViscosityLaw law =
      ViscosityLaw::fromAndrade(-3.7188, 578.919, -137.546, {kelvin(0), kelvin(100)});
  EXPECT_NEAR(law(kelvin(20)), 1.0016, 0.002);
  EXPECT_NEAR(law(kelvin(40)), 0.6527, 0.004);
}

TEST(andrade_law, is_a_straight_line_over_the_inverse_temperature) {
  const ViscosityLaw law(ViscosityScale::andrade, {{300, 10}, {400, 1}}, {250, 450});
  // Half way in 1/T: the geometric mean.
  EXPECT_NEAR(law(2 / (1 / 300.0 + 1 / 400.0)), std::sqrt(10.0), 1e-9);
  EXPECT_NEAR(law.changePerKelvin(350), -std::log(10.0) / (1 / 300.0 - 1 / 400.0) / (350 * 350),
              1e-6);
}

// Above 2 cSt, the exponential in Z is below 1e-6 and Z = v + 0.7.
double scaleOfThickLiquids(double v) { return std::log10(std::log10(v + 0.7)); }

TEST(d341_law, is_a_straight_line_in_its_own_scale) {
  const ViscosityLaw through(ViscosityScale::d341, {{kelvin(40), 32}, {kelvin(100), 5.4}});
  const double slope =
      (scaleOfThickLiquids(5.4) - scaleOfThickLiquids(32)) / std::log10(kelvin(100) / kelvin(40));
  for (const double celsius : {50.0, 80.0, 95.0}) {
    const double expected =
        scaleOfThickLiquids(32) + slope * std::log10(kelvin(celsius) / kelvin(40));
    EXPECT_NEAR(scaleOfThickLiquids(through(kelvin(celsius))), expected, 1e-9) << celsius;
  }
}

TEST(d341_law, has_the_viscosity_of_its_constants) {
  const ViscosityLaw constants = ViscosityLaw::fromD341(9.5259, 3.7449, {313, 373});
  for (const double t : {313.0, 353.0, 373.0})
    EXPECT_NEAR(scaleOfThickLiquids(constants(t)), 9.5259 - 3.7449 * std::log10(t), 1e-9) << t;
}

// The inverse that ASTM D341 gives, good to 0.03 %.
double inverseOfStandard(double z) {
  const double w = z - 0.7;
  return w - std::exp(-0.7487 - 3.295 * w + 0.6119 * w * w - 0.3193 * w * w * w);
}

TEST(d341_law, agrees_with_the_inverse_of_the_standard_at_low_viscosities) {
  for (const double a : {6.5, 7.0, 7.5}) {
    const ViscosityLaw law = ViscosityLaw::fromD341(a, 2.9, {kelvin(0), kelvin(100)});
    for (const double t : {0.0, 30.0, 60.0, 100.0}) {
      const double z = std::pow(10.0, std::pow(10.0, a - 2.9 * std::log10(kelvin(t))));
      const double expected = inverseOfStandard(z);
      EXPECT_NEAR(law(kelvin(t)) / expected, 1, 0.0005) << a << " " << t;
    }
  }
}

TEST(viscosity_law, is_not_extrapolated) {
  const ViscosityLaw law(ViscosityScale::andrade, water);
  EXPECT_EQ(complaint([&] { (void)law(kelvin(90)); }),
            "the viscosity law does not reach 90.00 C; it holds from 0.01 C to 80.00 C; add a "
            "point, or give the viscosity");
}

TEST(viscosity_law, refuses_points_that_no_liquid_has) {
  const auto make = [](std::vector<ViscosityPoint> points, ViscosityScale scale) {
    return complaint([&] { (void)ViscosityLaw(scale, points); });
  };
  EXPECT_EQ(make({{300, 1}}, ViscosityScale::andrade),
            "a viscosity law needs at least two points; add a temperature");
  EXPECT_EQ(make({{kelvin(20), 1}, {kelvin(40), 2}}, ViscosityScale::andrade),
            "the viscosity does not fall between 20.00 C and 40.00 C; check both points: a liquid "
            "gets thinner when it gets warmer");
  EXPECT_EQ(make({{kelvin(20), 1}, {kelvin(20), 2}}, ViscosityScale::andrade),
            "20.00 C is in the viscosity law twice; keep one of them");
  EXPECT_EQ(make({{kelvin(20), 1}, {kelvin(40), 0.2}}, ViscosityScale::d341),
            "the viscosity at 40.00 C is below the range of its law; the D341 law starts at "
            "0.21 cSt; use the Andrade law");
  EXPECT_EQ(make({{kelvin(-300), 1}, {300, 0.5}}, ViscosityScale::andrade),
            "-300.00 C of the viscosity law is not above absolute zero; give a temperature above "
            "-273.15 C");
}

TEST(viscosity_law, refuses_a_range_that_it_cannot_have) {
  using Make = ViscosityLaw (*)(TemperatureRange);
  const Make andrade = [](TemperatureRange range) {
    return ViscosityLaw::fromAndrade(-3.7188, 578.919, -137.546, range);
  };
  const Make d341 = [](TemperatureRange range) {
    return ViscosityLaw::fromD341(9.5259, 3.7449, range);
  };
  for (const Make make : {andrade, d341}) {
    EXPECT_EQ(complaint([&] {
                (void)make({kelvin(100), kelvin(0)});
              }),
              "the viscosity law holds nowhere from 100.00 C to 0.00 C; give the lower temperature "
              "first, then a higher one");
    EXPECT_EQ(complaint([&] {
                (void)make({kelvin(0), kelvin(0)});
              }),
              "the viscosity law holds nowhere from 0.00 C to 0.00 C; give the lower temperature "
              "first, then a higher one");
    EXPECT_EQ(complaint([&] {
                (void)make({kelvin(-300), kelvin(100)});
              }),
              "-300.00 C of the viscosity law is not above absolute zero; give a temperature above "
              "-273.15 C");
  }
  // Where T + c is not above 0, the Andrade law has no viscosity.
  EXPECT_EQ(complaint([&] {
              (void)andrade({kelvin(-140), kelvin(100)});
            }),
            "at -140.00 C, the temperature in K plus the constant c of the viscosity law is not "
            "above 0; give a temperature above -135.60 C");
}

}  // namespace
}  // namespace pelmora::flow
