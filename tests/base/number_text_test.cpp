// SPDX-License-Identifier: MIT
#include "base/number_text.h"

#include <pelmora/error.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace pelmora {
namespace {

int errorNumberOf(const std::string& text) {
  try {
    (void)numberFromText(text);
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

TEST(number_text, doubles_have_up_to_15_significant_digits) {
  EXPECT_EQ(numberText(0.1 + 0.2), "0.3");
  EXPECT_EQ(numberText(1.0 / 3), "0.333333333333333");
  EXPECT_EQ(numberText(2.0 / 3), "0.666666666666667");
}

TEST(number_text, singles_have_up_to_7_significant_digits) {
  EXPECT_EQ(numberText(0.1F), "0.1");
  EXPECT_EQ(numberText(0.045F), "0.045");
  EXPECT_EQ(numberText(1.0F / 3), "0.3333333");
}

TEST(number_text, small_numbers_take_an_exponent_of_two_digits) {
  EXPECT_EQ(numberText(0.0000192), "1.92E-05");
  EXPECT_EQ(numberText(0.0000288), "2.88E-05");
  EXPECT_EQ(numberText(1e-15), "1E-15");
  EXPECT_EQ(numberText(0.0001), "0.0001");
  EXPECT_EQ(numberText(1.5e300), "1.5E+300");
}

TEST(number_text, whole_numbers_are_plain) {
  EXPECT_EQ(numberText(40.0), "40");
  EXPECT_EQ(numberText(-7), "-7");
  EXPECT_EQ(numberText(123456789012345.0), "123456789012345");
}

TEST(number_text, minus_zero_is_zero) { EXPECT_EQ(numberText(-0.0), "0"); }

TEST(number_text, values_that_are_no_numbers_say_so) {
  EXPECT_EQ(numberText(std::numeric_limits<double>::quiet_NaN()), "NaN");
  EXPECT_EQ(numberText(std::numeric_limits<double>::infinity()), "Inf");
  EXPECT_EQ(numberText(-std::numeric_limits<double>::infinity()), "-Inf");
}

TEST(number_text, numbers_are_read_back_with_blanks_around_them) {
  EXPECT_EQ(numberFromText(" 1.92E-05 "), 0.0000192);
  EXPECT_EQ(numberFromText("+3"), 3);
  EXPECT_EQ(numberFromText("-2.5e3"), -2500);
}

TEST(number_text, text_that_is_no_number_is_a_type_mismatch) {
  for (const char* text : {"", " ", "abc", "1,5", "1.5x", "1 2", "nan", "inf", "+-1"}) {
    EXPECT_EQ(errorNumberOf(text), 13) << text;
  }
}

TEST(number_text, a_number_beyond_the_range_is_an_overflow) {
  EXPECT_EQ(errorNumberOf("1e999"), 6);
}

TEST(number_text, a_number_too_small_to_tell_from_zero_is_zero) {
  EXPECT_EQ(numberFromText("1e-999"), 0);
}

}  // namespace
}  // namespace pelmora
