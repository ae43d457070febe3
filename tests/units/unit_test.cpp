// Units against published factors.
// SPDX-License-Identifier: MIT
#include "units/unit.h"

#include "tests/support/complaint.h"

#include <gtest/gtest.h>

#include <string>

namespace pelmora::units {
namespace {

using test::complaint;

// A conversion rounds a few times.
constexpr double rounding = 4e-16;

double between(double value, const char* from, const char* to) {
  return converted(value, unitOf(from), unitOf(to));
}

// NIST SP 811 (2008), appendix B.8, prints these factors with seven digits.
TEST(units, agree_with_the_printed_factors) {
  EXPECT_NEAR(between(1, "gpm", "m3/s"), 6.309020e-5, 5e-12);
  EXPECT_NEAR(between(1, "gpm", "l/s"), 6.309020e-2, 5e-9);
  EXPECT_NEAR(between(1, "gal", "m3"), 3.785412e-3, 5e-10);
  EXPECT_NEAR(between(1, "gal", "l"), 3.785412, 5e-7);
  EXPECT_DOUBLE_EQ(between(1, "cSt", "m2/s"), 1e-6);
}

TEST(units, convert_by_exact_definitions) {
  EXPECT_DOUBLE_EQ(between(1, "gal", "l"), 3.785411784);
  EXPECT_DOUBLE_EQ(between(1000, "pulses/gal", "pulses/l"), 1000 / 3.785411784);
  EXPECT_DOUBLE_EQ(between(60, "l/min", "m3/h"), 3.6);
  EXPECT_DOUBLE_EQ(between(2.5, "Hz/cSt", "Hz/(m2/s)"), 2.5e6);
  EXPECT_DOUBLE_EQ(between(0.05, "%", "ppm"), 500);
}

TEST(units, keep_the_scales_of_temperature_apart_from_differences) {
  EXPECT_NEAR(between(70, "F", "C"), 21.0 + 1.0 / 9, 1e-12);
  EXPECT_NEAR(between(212, "F", "K"), 373.15, 1e-12);
  EXPECT_NEAR(between(-40, "C", "F"), -40, 1e-12);
  EXPECT_NEAR(convertedDifference(0.5, unitOf("C"), unitOf("F")), 0.9, 1e-15);
  EXPECT_NEAR(convertedDifference(0.5, unitOf("C"), unitOf("K")), 0.5, 1e-15);
}

TEST(units, return_where_they_came_from) {
  for (const Unit& from : knownUnits()) {
    for (const Unit& to : knownUnits()) {
      if (from.quantity != to.quantity) continue;
      const double there = converted(123.25, from, to);
      // Offsets of temperature scales cost the digits of the absolute temperature.
      const double digits = from.quantity == Quantity::temperature ? 1e-13 : rounding;
      EXPECT_NEAR(converted(there, to, from), 123.25, 123.25 * 2 * digits * 4)
          << from.symbol << " " << to.symbol;
    }
  }
}

TEST(units, are_found_by_other_spellings) {
  EXPECT_EQ(&unitOf("gal/min"), &unitOf("gpm"));
  EXPECT_EQ(&unitOf("L/min"), &unitOf("l/min"));
  EXPECT_EQ(&unitOf("m^2/s"), &unitOf("m2/s"));
  EXPECT_EQ(&unitOf("°C"), &unitOf("C"));
  EXPECT_EQ(&unitOf("1/gal"), &unitOf("pulses/gal"));
}

TEST(units, are_never_mixed) {
  EXPECT_EQ(complaint([] { (void)between(1, "cSt", "gpm"); }),
            "'cSt' is a unit of kinematic viscosity, and 'gpm' is one of volume flow; choose two "
            "units of the same quantity");
  EXPECT_EQ(complaint([] { (void)convertedDifference(1, unitOf("C"), unitOf("%")); }),
            "'C' is a unit of temperature, and '%' is one of relative size; choose two units of "
            "the same quantity");
}

TEST(units, suggest_the_unit_that_was_meant) {
  EXPECT_EQ(complaint([] { (void)unitOf("cst"); }),
            "'cst' is not a known unit; did you mean 'cSt'?");
}

TEST(measures, are_a_number_and_a_unit) {
  const Measure percent = readMeasure(" 0.05 % ");
  EXPECT_EQ(percent.value, 0.05);
  EXPECT_EQ(percent.unit, &unitOf("%"));
  EXPECT_EQ(readMeasure("1.2E-6m2/s").value, 1.2e-6);
}

TEST(measures, say_what_is_missing) {
  EXPECT_EQ(complaint([] { (void)readMeasure("0.05"); }),
            "'0.05' has no unit; write the unit behind the number");
  EXPECT_NE(complaint([] { (void)readMeasure("0,05 %"); }).find("is not a known unit"),
            std::string::npos);
  for (const char* text : {"", "%", "inf %", "nan %", "1e999 %"}) {
    EXPECT_NE(complaint([&] { (void)readMeasure(text); }).find("does not start with a number"),
              std::string::npos)
        << text;
  }
}

}  // namespace
}  // namespace pelmora::units
