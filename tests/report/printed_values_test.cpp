// SPDX-License-Identifier: MIT
#include "report/printed_values.h"

#include <gtest/gtest.h>

#include <cmath>

namespace pelmora::report {
namespace {

TEST(printed_values, of_parameters_end_at_the_second_digit_of_their_errors) {
  EXPECT_EQ(printedParameter(1234.56789, 0.0321), "1234.568");
  EXPECT_EQ(printedParameter(-0.00123456, 0.0000098), "-0.0012346");
  EXPECT_EQ(printedParameter(2.5, 0.5), "2.50");
  EXPECT_EQ(printedParameter(0.123456, 4.5), "0.12");
}

TEST(printed_values, of_parameters_without_an_error_have_all_digits) {
  EXPECT_EQ(printedParameter(0.1234567890123456, 0), "0.1234567890123456");
  EXPECT_EQ(printedParameter(0.5, std::nan("")), "0.5");
}

TEST(printed_values, that_are_absent_are_dashes) {
  EXPECT_EQ(printedFrequency(std::nullopt), "-");
  EXPECT_EQ(printedDeviation(std::nullopt), "-");
  EXPECT_EQ(printedRoshko(INFINITY), "-");
}

TEST(printed_values, have_seven_digits_where_curves_are_read) {
  EXPECT_EQ(printedFactor(1305.5), "1305.500");
  EXPECT_EQ(printedRoshko(179.71184), "179.7118");
}

}  // namespace
}  // namespace pelmora::report
