// SPDX-License-Identifier: MIT
#include "solver/equations/block_evaluator.h"
#include "solver/arithmetic/dual.h"
#include "solver/equations/expression_parser.h"

#include <gtest/gtest.h>

#include <string>

namespace pelmora::solver {
namespace {

using Exact = BlockEvaluator<DoubleDouble>;

const std::vector<std::string> equations{"a*(1-exp(-b*x))",
                                         "exp(-a*x)/(b+c*x)",
                                         "a*x^b",
                                         "a*(b+x)^(-1/c)",
                                         "(a+b*x+c*x^2)/(1+d*x)",
                                         "a-b*x-atan(c/(x-d))/pi",
                                         "a+b*cos(c*x)+d*sin(c*x)",
                                         "sinh(a*x)+cosh(b*x)+tanh(c*x)",
                                         "asin(a*x/9)+acos(b*x/9)+tan(c*x/9)",
                                         "ln(a*x)+log(b*x)+sqrt(c*x)",
                                         "abs(a-b*x)*abs(c)",
                                         "x^a^b",
                                         "(a/b)*exp(-0.5*((x-c)/b)^2)",
                                         "-a^3+(b*x)^-2"};

Exact::Letters letters() {
  Exact::Letters result{};
  const double values[] = {1.3, 0.7, 1.9, 0.45};
  for (std::size_t k = 0; k < 4; ++k) result[k] = DoubleDouble(values[k]) / DoubleDouble(1.01);
  return result;
}

DoubleDouble valueAt(const Expression& expression, const Exact::Letters& at, double x) {
  Exact evaluator(expression, {{expression.root}});
  evaluator.load({{x}}, at);
  return evaluator.value(expression.root)[0];
}

// Central differences of step h are off by h^2 times the third derivative, and double-double
// rounding by 1e-30 / h: 1e-18 at h = 1e-10.
TEST(derivatives, gradients_agree_with_central_differences) {
  const double h = 1e-10;
  for (const auto& text : equations) {
    const Expression expression = parseExpression(text);
    Exact evaluator(expression, {{expression.root}});
    for (const double x : {0.9, 2.3}) {
      evaluator.load({{x}}, letters());
      evaluator.differentiate(expression.root);
      for (const int letter : expression.letters()) {
        Exact::Letters above = letters(), below = letters();
        above[static_cast<std::size_t>(letter)] += DoubleDouble(h);
        below[static_cast<std::size_t>(letter)] -= DoubleDouble(h);
        const DoubleDouble difference =
            (valueAt(expression, above, x) - valueAt(expression, below, x)) / DoubleDouble(2 * h);
        const DoubleDouble slope = evaluator.gradient(letter)[0];
        EXPECT_NEAR((slope - difference).hi, 0, 1e-16 * (1 + std::fabs(slope.hi)))
            << text << " " << letter;
      }
    }
  }
}

TEST(derivatives, second_derivatives_agree_with_differences_of_gradients) {
  const double h = 1e-10;
  for (const auto& text : equations) {
    const Expression expression = parseExpression(text);
    BlockEvaluator<Dual<DoubleDouble>> twice(expression, {{expression.root}});
    Exact once(expression, {{expression.root}});
    const double x = 1.7;
    for (const int i : expression.letters()) {
      BlockEvaluator<Dual<DoubleDouble>>::Letters moving{};
      for (std::size_t k = 0; k < 26; ++k) moving[k].value = letters()[k];
      moving[static_cast<std::size_t>(i)].slope = DoubleDouble(1);
      twice.load({{x}}, moving);
      twice.differentiate(expression.root);
      for (const int j : expression.letters()) {
        DoubleDouble gradients[2];
        for (const int side : {0, 1}) {
          Exact::Letters at = letters();
          at[static_cast<std::size_t>(i)] += DoubleDouble(side == 0 ? h : -h);
          once.load({{x}}, at);
          once.differentiate(expression.root);
          gradients[side] = once.gradient(j)[0];
        }
        const double difference = ((gradients[0] - gradients[1]) / DoubleDouble(2 * h)).hi;
        EXPECT_NEAR(twice.gradient(j)[0].slope.hi, difference, 1e-15 * (1 + std::fabs(difference)))
            << text << " " << i << " " << j;
      }
    }
  }
}

TEST(derivatives, doubles_and_double_doubles_agree) {
  for (const auto& text : equations) {
    const Expression expression = parseExpression(text);
    BlockEvaluator<double> plain(expression, {{expression.root}});
    Exact exact(expression, {{expression.root}});
    BlockEvaluator<double>::Letters at{};
    for (std::size_t k = 0; k < 26; ++k) at[k] = letters()[k].hi;
    plain.load({{2.3}}, at);
    exact.load({{2.3}}, letters());
    plain.differentiate(expression.root);
    exact.differentiate(expression.root);
    EXPECT_NEAR(plain.value(expression.root)[0], exact.value(expression.root)[0].hi, 1e-13) << text;
    for (const int letter : expression.letters()) {
      EXPECT_NEAR(plain.gradient(letter)[0], exact.gradient(letter)[0].hi, 1e-13) << text;
    }
  }
}

}  // namespace
}  // namespace pelmora::solver
