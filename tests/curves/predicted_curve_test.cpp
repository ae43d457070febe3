// SPDX-License-Identifier: MIT
#include "curves/predicted_curve.h"

#include "tests/support/journal.h"
#include "tests/support/recording_platform.h"

#include <pelmora/error.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

namespace pelmora {
namespace {

using Values = std::vector<double>;

int errorNumberOf(const std::function<void()>& body) {
  try {
    body();
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

void expectNear(const Values& values, const Values& expected) {
  constexpr double tolerance = 1e-13;  // a few roundings of log and power
  ASSERT_EQ(values.size(), expected.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_NEAR(values[i], expected[i], tolerance * std::abs(expected[i])) << i;
  }
}

TEST(signed_log10, is_the_decimal_logarithm_of_positive_values) {
  EXPECT_NEAR(signedLog10(1000), 3, 1e-15 * 8);
  EXPECT_EQ(signedLog10(1), 0);
  EXPECT_NEAR(signedLog10(0.01), -2, 1e-15 * 4);
}

TEST(signed_log10, is_negated_for_negative_values) {
  EXPECT_NEAR(signedLog10(-100), -2, 1e-15 * 4);
  EXPECT_NEAR(signedLog10(-0.01), 2, 1e-15 * 4);
}

TEST(signed_log10, is_a_quotient_of_natural_logarithms) {
  EXPECT_EQ(signedLog10(1000), std::log(1000.0) / std::log(10.0));
  EXPECT_EQ(signedLog10(-7.25), -(std::log(7.25) / std::log(10.0)));
}

TEST(signed_log10, does_not_remember_the_sign_of_the_value_before) {
  (void)signedLog10(-5);
  EXPECT_GT(signedLog10(5), 0);
}

TEST(signed_log10, zero_is_an_invalid_argument) {
  EXPECT_EQ(errorNumberOf([] { (void)signedLog10(0); }), 5);
}

TEST(log_spaced_grid, is_even_in_the_logarithm) {
  expectNear(logSpacedGrid(1, 10000, 4), {1, 10, 100, 1000, 10000});
}

TEST(log_spaced_grid, one_interval_gives_both_ends) {
  expectNear(logSpacedGrid(3, 70, 1), {3, 70});
}

TEST(log_spaced_grid, may_fall) { expectNear(logSpacedGrid(100, 1, 2), {100, 10, 1}); }

TEST(log_spaced_grid, equal_ends_give_equal_values) {
  expectNear(logSpacedGrid(5, 5, 3), {5, 5, 5, 5});
}

// The logarithm of -100 counts as -2, and the power gives 0.01 back.
TEST(log_spaced_grid, negative_ends_become_reciprocals) {
  expectNear(logSpacedGrid(-100, 1, 2), {0.01, 0.1, 1});
}

TEST(log_spaced_grid, no_interval_divides_by_zero) {
  EXPECT_EQ(errorNumberOf([] { (void)logSpacedGrid(1, 10, 0); }), 11);
}

TEST(log_spaced_grid, fewer_intervals_are_out_of_range) {
  EXPECT_EQ(errorNumberOf([] { (void)logSpacedGrid(1, 10, -1); }), 9);
  EXPECT_EQ(errorNumberOf([] { (void)logSpacedGrid(1, 10, -4); }), 9);
}

TEST(log_spaced_grid, end_at_zero_is_an_invalid_argument) {
  EXPECT_EQ(errorNumberOf([] { (void)logSpacedGrid(0, 10, 2); }), 5);
  EXPECT_EQ(errorNumberOf([] { (void)logSpacedGrid(1, 0, 2); }), 5);
}

TEST(log_spaced_grid, infinite_end_overflows) {
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_EQ(errorNumberOf([=] { (void)logSpacedGrid(1, inf, 2); }), 6);
}

class ratio_curve_is_monotonic : public testing::Test {
 protected:
  test::Journal journal_;
  test::RecordingPlatform platform_{journal_};
};

bool isMonotonic(const Values& x, const Values& y) { return ratioCurveIsMonotonic(x, y); }

TEST_F(ratio_curve_is_monotonic, passes_a_falling_curve) {
  EXPECT_TRUE(isMonotonic({1, 2, 3}, {30, 20, 10}));
}

TEST_F(ratio_curve_is_monotonic, refuses_a_rising_curve) {
  EXPECT_FALSE(isMonotonic({1, 2, 3}, {10, 20, 30}));
}

TEST_F(ratio_curve_is_monotonic, refuses_a_curve_that_turns) {
  EXPECT_FALSE(isMonotonic({1, 2, 3, 4}, {30, 10, 20, 5}));
}

TEST_F(ratio_curve_is_monotonic, passes_equal_x) { EXPECT_TRUE(isMonotonic({2, 2, 2}, {3, 1, 2})); }

// Two rows of equal y change places in the sort: the larger x then stands first.
TEST_F(ratio_curve_is_monotonic, passes_two_level_points) {
  EXPECT_TRUE(isMonotonic({1, 2}, {5, 5}));
  EXPECT_FALSE(isMonotonic({2, 1}, {5, 5}));
}

TEST_F(ratio_curve_is_monotonic, passes_one_point) { EXPECT_TRUE(isMonotonic({1}, {1})); }

TEST_F(ratio_curve_is_monotonic, does_not_depend_on_the_order_of_the_points) {
  EXPECT_TRUE(isMonotonic({3, 1, 2}, {10, 30, 20}));
  EXPECT_FALSE(isMonotonic({3, 1, 2}, {30, 10, 20}));
}

}  // namespace
}  // namespace pelmora
