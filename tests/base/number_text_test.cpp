// SPDX-License-Identifier: MIT
#include "base/number_text.h"

#include <pelmora/error.h>

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
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

TEST(number_text, texts_of_many_numbers_have_the_same) {
  const NumberTexts numbers;
  for (const double value :
       {0.1 + 0.2, -1234567.25, 1e15, -2.5e-7, 1e300, -0.0, 7.0,
        std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::infinity()}) {
    std::string text = "a";
    numbers.append(text, value);
    EXPECT_EQ(text, "a" + numberText(value));
  }
  std::string text;
  numbers.append(text, std::size_t{1024});
  EXPECT_EQ(text, "1024");
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

// What the C library writes, which knows every digit of a number.
std::string printed(double value) {
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), "%.15g", value);
  std::string printed = text.data();
  if (const auto at = printed.find('e'); at != std::string::npos) printed[at] = 'E';
  return printed;
}

TEST(number_text, doubles_are_rounded_from_all_their_digits) {
  std::mt19937_64 random(1);  // NOLINT: the same numbers each time
  for (int i = 0; i < 200'000; ++i) {
    const auto value = std::bit_cast<double>(random());
    if (!std::isfinite(value)) continue;
    ASSERT_EQ(numberText(value), printed(value)) << std::hexfloat << value;
  }
}

TEST(number_text, measured_numbers_are_rounded_from_all_their_digits) {
  std::mt19937_64 random(2);  // NOLINT
  std::uniform_real_distribution<double> digit(-1, 1), size(-7, 18);
  for (int i = 0; i < 200'000; ++i) {
    const double value = digit(random) * std::pow(10, std::floor(size(random)));
    ASSERT_EQ(numberText(value), printed(value)) << std::hexfloat << value;
  }
}

// 16 digits with a 5 at the end, which most numbers are a little above or below, and their
// neighbours.
TEST(number_text, doubles_near_the_middle_between_two_texts_go_to_the_nearer_one) {
  std::mt19937_64 random(3);  // NOLINT
  std::uniform_int_distribution<std::int64_t> digits(100'000'000'000'000, 999'999'999'999'999);
  std::uniform_int_distribution<int> exponent(-320, 290);
  for (int i = 0; i < 100'000; ++i) {
    const std::string middle =
        std::to_string(digits(random)) + "5e" + std::to_string(exponent(random));
    const double value = std::strtod(middle.c_str(), nullptr);
    for (const double near : {std::nextafter(value, 0), value, std::nextafter(value, 2 * value)})
      ASSERT_EQ(numberText(near), printed(near)) << middle;
  }
}

TEST(number_text, rounding_may_carry_into_a_new_digit) {
  for (const double value : {9.9999999999999995, 0.99999999999999989, 99999999999999.996,
                             999999999999999.9, 1e15, 9999999999999998.0, 0.000099999999999999991})
    EXPECT_EQ(numberText(value), printed(value));
  for (int power = -300; power <= 300; ++power) {
    const double value = std::pow(10, power);
    EXPECT_EQ(numberText(std::nextafter(value, 0)), printed(std::nextafter(value, 0)));
    EXPECT_EQ(numberText(value), printed(value));
  }
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
