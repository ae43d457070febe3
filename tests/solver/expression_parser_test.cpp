// SPDX-License-Identifier: MIT
#include "solver/equations/block_evaluator.h"
#include "solver/equations/expression_parser.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace pelmora::solver {
namespace {

// The expression at x with a = 2, b = 3, c = 5 and e = 7.
double valueOf(const std::string& text, double x = 0) {
  const Expression expression = parseExpression(text);
  BlockEvaluator<double> evaluator(expression, {{expression.root}});
  BlockEvaluator<double>::Letters letters{};
  letters[0] = 2, letters[1] = 3, letters[2] = 5, letters[4] = 7;
  evaluator.load({{x}}, letters);
  return evaluator.value(expression.root)[0];
}

std::string failureOf(const std::string& text) {
  try {
    (void)parseExpression(text);
  } catch (const ParseFailure& failure) {
    return failure.message;
  }
  return "none";
}

TEST(expression_parser, products_bind_stronger_than_sums) {
  EXPECT_EQ(valueOf("1+2*3"), 7);
  EXPECT_EQ(valueOf("a+b*c-1"), 16);
  EXPECT_EQ(valueOf("8/4/2"), 1);
  EXPECT_EQ(valueOf("8-4-2"), 2);
}

TEST(expression_parser, powers_bind_to_the_right_and_stronger_than_the_sign) {
  EXPECT_EQ(valueOf("2^3^2"), 512);
  EXPECT_EQ(valueOf("-2^2"), -4);
  EXPECT_EQ(valueOf("(-2)^2"), 4);
  EXPECT_EQ(valueOf("2^-2"), 0.25);
  EXPECT_EQ(valueOf("-x^2", 3), -9);
  EXPECT_EQ(valueOf("2*-x", 3), -6);
  EXPECT_EQ(valueOf("--x", 3), 3);
  EXPECT_EQ(valueOf("2*x^2", 3), 18);
}

TEST(expression_parser, functions_have_their_usual_meaning) {
  const double x = 0.3;
  EXPECT_DOUBLE_EQ(valueOf("ln(x)", x), std::log(x));
  EXPECT_DOUBLE_EQ(valueOf("log(x)", x), std::log10(x));
  EXPECT_DOUBLE_EQ(valueOf("exp(x)", x), std::exp(x));
  EXPECT_DOUBLE_EQ(valueOf("sqrt(x)", x), std::sqrt(x));
  EXPECT_DOUBLE_EQ(valueOf("abs(-x)", x), x);
  EXPECT_DOUBLE_EQ(valueOf("sin(x)+cos(x)", x), std::sin(x) + std::cos(x));
  EXPECT_DOUBLE_EQ(valueOf("tan(x)", x), std::tan(x));
  EXPECT_DOUBLE_EQ(valueOf("asin(x)", x), std::asin(x));
  EXPECT_DOUBLE_EQ(valueOf("acos(x)", x), std::acos(x));
  EXPECT_DOUBLE_EQ(valueOf("atan(x)", x), std::atan(x));
  EXPECT_DOUBLE_EQ(valueOf("sinh(x)", x), std::sinh(x));
  EXPECT_DOUBLE_EQ(valueOf("cosh(x)", x), std::cosh(x));
  EXPECT_DOUBLE_EQ(valueOf("tanh(x)", x), std::tanh(x));
  EXPECT_DOUBLE_EQ(valueOf("cos(pi)"), -1);
}

TEST(expression_parser, an_e_belongs_to_a_number_only_where_digits_follow) {
  EXPECT_EQ(valueOf("1E-3"), 0.001);
  EXPECT_EQ(valueOf("2.5e+2"), 250);
  EXPECT_EQ(valueOf(".5"), 0.5);
  EXPECT_EQ(valueOf("5."), 5);
  EXPECT_EQ(valueOf("2e3"), 2000);
  EXPECT_EQ(valueOf("e*2"), 14);
  EXPECT_EQ(valueOf("2*e"), 14);
  EXPECT_EQ(failureOf("2e"), "expected an operator before 'e' at position 2");
  EXPECT_EQ(failureOf("2e*x"), "expected an operator before 'e' at position 2");
}

TEST(expression_parser, letters_but_x_are_parameters_in_order_of_the_alphabet) {
  EXPECT_EQ(parseExpression("z+b*x+E").letters(), (std::vector<int>{1, 4, 25}));
  EXPECT_TRUE(parseExpression("x+pi").letters().empty());
}

TEST(expression_parser, capital_letters_and_blanks_do_not_matter) {
  EXPECT_EQ(valueOf(" A + B * LOG( X ) ", 100), 8);
}

TEST(expression_parser, failures_name_the_place) {
  EXPECT_EQ(failureOf(""), "the expression is empty");
  EXPECT_EQ(failureOf("  "), "the expression is empty");
  EXPECT_EQ(failureOf("a+"), "expected a number, a name or '(' before the end at position 3");
  EXPECT_EQ(failureOf("a+*x"), "expected a number, a name or '(' before '*' at position 3");
  EXPECT_EQ(failureOf("a+(b*x"), "a bracket that is never closed at position 3");
  EXPECT_EQ(failureOf("a+b)*x"), "a closing bracket that nothing opened at position 4");
  EXPECT_EQ(failureOf("2x"), "expected an operator before 'x' at position 2");
  EXPECT_EQ(failureOf("a+foo(x)"), "unknown name 'foo' at position 3");
  EXPECT_EQ(failureOf("a+ln x"), "expected '(' after ln at position 6");
  EXPECT_EQ(failureOf("a&x"), "expected an operator before '&' at position 2");
  EXPECT_EQ(failureOf("1e999*a"), "a number that is too large at position 1");
  EXPECT_EQ(failureOf("a+."), "expected a number before '.' at position 3");
}

TEST(expression_parser, hostile_texts_are_refused_without_harm) {
  EXPECT_EQ(failureOf(std::string(200, '(') + "x" + std::string(200, ')')),
            "more than 100 levels at position 101");
  EXPECT_EQ(failureOf(std::string(3000, '-') + "x"), "more than 100 levels at position 101");
  std::string powers = "x";
  for (int k = 0; k < 500; ++k) powers += "^x";
  EXPECT_NE(failureOf(powers).find("more than 100 levels"), std::string::npos);
  EXPECT_EQ(failureOf(std::string(1'000'000, 'a')),
            "the expression is longer than 4000 characters");
  EXPECT_EQ(failureOf(std::string("a+\0b", 4)),
            "expected a number, a name or '(' before a strange character at position 3");
  EXPECT_NE(failureOf("a+\xC3\xA4*x"), "none");
}

TEST(expression_parser, the_longest_sum_is_read) {
  std::string text = "a";
  while (text.size() + 2 <= longestExpression) text += "+x";
  EXPECT_EQ(valueOf(text, 1), 2 + static_cast<double>(text.size() / 2));
}

}  // namespace
}  // namespace pelmora::solver
