// SPDX-License-Identifier: MIT
#include "base/student_t.h"

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

TEST(student_t, tails_of_one_and_two_degrees_have_closed_forms) {
  for (const double t : {0.0, 0.3, 2.0, 40.0}) {
    EXPECT_NEAR(twoSidedStudentTail(t, 1), 1 - 2 * std::atan(t) / std::numbers::pi, 1e-14);
    EXPECT_NEAR(twoSidedStudentTail(t, 2), 1 - t / std::sqrt(2 + t * t), 1e-14);
  }
}

TEST(student_t, tiny_tails_keep_their_digits) {
  // f = 4: the density is 12 / t^5 where t is large, so both tails together are 6 / t^4.
  const double t = 1e4;
  EXPECT_NEAR(twoSidedStudentTail(t, 4) / (6 / std::pow(t, 4)), 1, 1e-6);
}

TEST(student_t, of_many_degrees_is_the_normal_distribution) {
  EXPECT_NEAR(twoSidedStudentT(0.95, 1e7), 1.959964, 1e-6);
}

}  // namespace
}  // namespace pelmora
