// SPDX-License-Identifier: MIT
#include "solver/equations/expression_parser.h"
#include "solver/nonlinear/parameter_sizes.h"

#include <gtest/gtest.h>

#include <string>

namespace pelmora::solver {
namespace {

using Powers = std::vector<std::optional<double>>;

Powers powersOf(const std::string& text) { return powersOfUnit(parseExpression(text)); }

TEST(parameter_sizes, a_rate_goes_against_the_unit_and_a_place_with_it) {
  EXPECT_EQ(powersOf("a*exp(-b*x)+c*exp(-(x-d)^2/e^2)"), (Powers{0, -1, 0, 1, 1}));
}

TEST(parameter_sizes, coefficients_of_powers_go_against_them) {
  EXPECT_EQ(powersOf("(a+b*x+c*x^2)/(1+d*x+e*x^2)"), (Powers{0, -1, -2, -1, -2}));
  EXPECT_EQ(powersOf("sqrt(a*x)+b/x"), (Powers{-1, 1}));
}

TEST(parameter_sizes, exponents_are_pure_numbers) {
  EXPECT_EQ(powersOf("a/((1+exp(b-c*x))^(1/d))"), (Powers{0, 0, -1, 0}));
  EXPECT_EQ(powersOf("a*(b+x)^(-1/c)")[1], 1);
}

TEST(parameter_sizes, what_the_form_leaves_open_is_left_open) {
  EXPECT_EQ(powersOf("exp(a*b*x)"), (Powers{std::nullopt, std::nullopt}));
}

TEST(parameter_sizes, constants_that_hide_a_unit_cost_one_rule_only) {
  EXPECT_EQ(powersOf("a*sin(x/12)+b*cos(x/c)"), (Powers{0, 0, 1}));
}

}  // namespace
}  // namespace pelmora::solver
