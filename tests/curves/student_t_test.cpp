// SPDX-License-Identifier: MIT
#include "curves/student_t.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace pelmora {
namespace {

// Printed tables carry three to six decimals.
constexpr double printed = 5e-7;

TEST(student_t, matches_printed_tables) {
  EXPECT_NEAR(twoSidedStudentT(0.95, 10), 2.228139, printed);
  EXPECT_NEAR(twoSidedStudentT(0.95, 30), 2.042272, printed);
  EXPECT_NEAR(twoSidedStudentT(0.99, 5), 4.032143, printed);
  EXPECT_NEAR(twoSidedStudentT(0.90, 120), 1.657651, printed);
}

TEST(student_t, of_one_degree_is_the_cauchy_distribution) {
  EXPECT_NEAR(twoSidedStudentT(0.95, 1), std::tan(0.95 * std::numbers::pi / 2), 1e-8);
}

TEST(student_t, of_two_degrees_has_a_closed_form) {
  const double p = 0.95;
  EXPECT_NEAR(twoSidedStudentT(p, 2), p * std::sqrt(2 / (1 - p * p)), 1e-9);
}

TEST(student_t, of_many_degrees_is_the_normal_distribution) {
  EXPECT_NEAR(twoSidedStudentT(0.95, 1e7), 1.959964, 1e-6);
}

}  // namespace
}  // namespace pelmora
