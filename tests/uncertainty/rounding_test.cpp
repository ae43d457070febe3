// SPDX-License-Identifier: MIT
#include "uncertainty/rounding.h"

#include <pelmora/calibration/failure.h>

#include <gtest/gtest.h>

#include <limits>

namespace pelmora::uncertainty {
namespace {

// Both examples of JCGM 100:2008, 7.2.6.
TEST(rounding, follows_the_guide) {
  EXPECT_DOUBLE_EQ(roundedUncertainty(10.47), 11);
  EXPECT_DOUBLE_EQ(roundedUncertainty(28.05), 28);
}

TEST(rounding, keeps_two_significant_digits_at_every_size) {
  EXPECT_DOUBLE_EQ(roundedUncertainty(0.0345 - 1e-9), 0.035);
  EXPECT_DOUBLE_EQ(roundedUncertainty(0.0999), 0.1);
  EXPECT_DOUBLE_EQ(roundedUncertainty(1234), 1300);
  EXPECT_DOUBLE_EQ(roundedUncertainty(0.05), 0.05);
  EXPECT_DOUBLE_EQ(roundedUncertainty(3e-9), 3e-9);
}

TEST(rounding, never_goes_below_what_the_laboratory_can_do) {
  EXPECT_DOUBLE_EQ(roundedUncertainty(0.01, 2, 0.05), 0.05);
  EXPECT_DOUBLE_EQ(roundedUncertainty(0.01, 2, 0.0502), 0.051);
  EXPECT_DOUBLE_EQ(roundedUncertainty(0.06, 2, 0.05), 0.06);
}

TEST(rounding, gives_the_value_the_digits_of_its_uncertainty) {
  const RoundedResult fine = roundedResult(1318.25741, 0.3951);
  EXPECT_EQ(fine.value, "1318.26");
  EXPECT_EQ(fine.uncertainty, "0.40");
  EXPECT_EQ(fine.decimals, 2);
  EXPECT_EQ(roundedResult(1318.25741, 0.0996).uncertainty, "0.10");
  EXPECT_EQ(roundedResult(1318.25741, 0.0996).value, "1318.26");
  const RoundedResult coarse = roundedResult(1318.25741, 123);
  EXPECT_EQ(coarse.value, "1320");
  EXPECT_EQ(coarse.uncertainty, "130");
  EXPECT_EQ(coarse.decimals, -1);
  EXPECT_EQ(roundedResult(-0.0001, 0.11).value, "0.00");
}

TEST(rounding, refuses_what_is_no_result) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THROW((void)roundedResult(nan, 1), calibration::BadData);
  EXPECT_THROW((void)roundedResult(1, 0), calibration::BadData);
  EXPECT_THROW((void)roundedResult(1, nan), calibration::BadData);
}

}  // namespace
}  // namespace pelmora::uncertainty
