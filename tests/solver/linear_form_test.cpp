// SPDX-License-Identifier: MIT
#include "solver/equations/expression_parser.h"
#include "solver/equations/linear_form.h"
#include "solver/equations/power_basis.h"

#include <gtest/gtest.h>

#include <string>

namespace pelmora::solver {
namespace {

bool isLinear(const std::string& text) {
  Expression expression = parseExpression(text);
  return linearForm(expression, expression.letters()).has_value();
}

std::string jointly(const std::string& text) {
  std::string letters;
  for (const int letter : jointlyLinearLetters(parseExpression(text))) {
    letters += static_cast<char>('a' + letter);
  }
  return letters;
}

std::optional<PowerBasis> powersOf(const std::string& text) {
  Expression expression = parseExpression(text);
  const auto form = linearForm(expression, expression.letters());
  return form ? powerBasis(expression, *form) : std::nullopt;
}

TEST(linear_form, sums_products_and_quotients_of_functions_of_x_are_linear) {
  for (const char* text :
       {"a", "a*x", "a+b*x+c*x^2", "a*exp(x)+b/sin(x)", "(a+b*x)*ln(x)", "-(a-b)/x",
        "x*(a+(b+c*x)*x)", "a+b*log(x)^3-x^2", "a^1*x", "(a+b*x)/(1+x^2)"}) {
    EXPECT_TRUE(isLinear(text)) << text;
  }
}

TEST(linear_form, parameters_inside_functions_divisors_and_products_are_not) {
  for (const char* text : {"a*b*x", "a^2*x", "x^a", "exp(a*x)", "a/(b+x)", "1/a", "a*(1+a*x)",
                           "abs(a)*x", "ln(a)+x", "a+b*x^c"}) {
    EXPECT_FALSE(isLinear(text)) << text;
  }
}

TEST(linear_form, parameters_that_enter_linearly_together_are_found) {
  EXPECT_EQ(jointly("a*(1-exp(-b*x))"), "a");
  EXPECT_EQ(jointly("a*exp(-b*x)+c*exp(-d*x)"), "ac");
  EXPECT_EQ(jointly("exp(-a*x)/(b+c*x)"), "");
  EXPECT_EQ(jointly("a*(x^2+x*b)/(x^2+x*c+d)"), "a");
  EXPECT_EQ(jointly("(a+b*x)/(1+c*x)"), "ab");
}

TEST(linear_form, polynomials_in_one_function_are_recognised) {
  const auto logarithms = powersOf("a+b*log(x)+c*log(x)^2");
  ASSERT_TRUE(logarithms);
  EXPECT_EQ(logarithms->lowest, 0);
  EXPECT_NEAR(logarithms->factor[2].hi, 0.18861169701161387, 1e-16);  // 1 / ln(10)^2
  const auto both = powersOf("a+b*ln(x)+c/ln(x)+d*(ln(x))^2+e/(ln(x))^2");
  ASSERT_TRUE(both);
  EXPECT_EQ(both->lowest, -2);
  EXPECT_EQ(both->parameterOf, (std::vector<std::size_t>{4, 2, 0, 1, 3}));
  EXPECT_TRUE(powersOf("a+b*sqrt(x)+c*sqrt(x)^2"));
  EXPECT_TRUE(powersOf("a+b*x^0.5"));
  EXPECT_TRUE(powersOf("a*x"));
}

TEST(linear_form, other_terms_are_no_polynomial) {
  for (const char* text : {"a+b*x^2", "a+b*x+c*ln(x)", "a+b*x+c*x", "1+a*x", "a*x+b*exp(x)"}) {
    EXPECT_FALSE(powersOf(text)) << text;
  }
}

}  // namespace
}  // namespace pelmora::solver
