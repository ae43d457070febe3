// Equations and points that mean harm: an answer in reasonable time, and no wrong one.
// SPDX-License-Identifier: MIT
#include "solver/equations/expression_parser.h"
#include "solver/nonlinear/expression_model.h"
#include "solver/nonlinear/nonlinear_fit.h"
#include "tests/solver/fit_helpers.h"
#include "tests/solver/strd_sets.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace pelmora::test {
namespace {

const std::vector<double> someX{1, 2, 3, 4, 5, 6, 7, 8}, someY{3, 1, 4, 1, 5, 9, 2, 6};

TEST(hostile_fits, redundant_nonlinear_parameters_are_no_solution) {
  const auto model = fitOf("a*b*x", someX, someY);
  EXPECT_FALSE(model->solutionFound());
  EXPECT_EQ(model->failureReason(), "the data cannot tell the parameters apart");
}

TEST(hostile_fits, a_minimum_at_infinity_is_no_solution) {
  // The points are met exactly by b -> infinity only.
  const auto model = fitOf("a*exp(-b*x)", {0, 1, 2, 3}, {1, 0, 0, 0}, {1, 1});
  EXPECT_FALSE(model->solutionFound()) << model->parameters()[1].Value;
}

// For a, c and d without bounds, in fixed proportions, MGH09 tends to the curve of fewer
// parameters; the standard errors there are so vast that any step looks negligible beside them.
TEST(hostile_fits, the_way_to_infinity_is_not_taken_for_its_end) {
  const StrdSet set = strdSet("MGH09");
  const auto expression = solver::parseExpression(set.model);
  const auto model = solver::makeExpressionModel(expression, set.x[0], set.y);
  EXPECT_THROW(
      (void)solver::lowestMinimum(*model, {{-9.839e12, -0.04778, -1.443e14, 9.836e12}}, {}),
      solver::NoSolution);
}

TEST(hostile_fits, equations_that_are_finite_nowhere_are_no_solution) {
  for (const char* text : {"a*ln(-abs(b)-x)", "sqrt(-1-a^2)*x", "a^b*ln(0)", "asin(2+abs(a))*b"}) {
    const auto model = fitOf(text, someX, someY);
    EXPECT_FALSE(model->solutionFound()) << text;
    EXPECT_NE(model->failureReason().find("not finite"), std::string::npos)
        << model->failureReason();
  }
}

TEST(hostile_fits, a_wrong_number_of_start_values_is_no_solution) {
  EXPECT_EQ(fitOf("a*exp(b*x)", someX, someY, {1})->failureReason(),
            "1 start values for 2 parameters");
}

TEST(hostile_fits, start_values_that_are_not_finite_are_no_solution) {
  EXPECT_FALSE(fitOf("a*exp(b*x)", someX, someY, {1, std::nan("")})->solutionFound());
}

TEST(hostile_fits, a_fit_that_is_asked_to_stop_ends_without_a_solution) {
  auto model = createSolver()->createModel();
  model->Definition = {"Test", "a*exp(b*x)+c*exp(d*x)"};
  int asked = 0;
  model->Settings.StopRequested = [&asked] { return ++asked > 5; };
  std::vector<double> x, y;
  for (int i = 1; i <= 40; ++i) {
    x.push_back(i);
    y.push_back(2 * std::exp(-0.1 * i) + 0.5 * std::exp(-0.02 * i) + 0.001 * (i % 3));
  }
  model->attach(test::dataOf(x, y));
  EXPECT_FALSE(model->solutionFound());
  EXPECT_NE(model->failureReason().find("stopped"), std::string::npos) << model->failureReason();
  EXPECT_LT(asked, 20);
  model->Settings.StopRequested = {};
  model->attach(test::dataOf(x, y));
  EXPECT_TRUE(model->solutionFound()) << model->failureReason();
}

TEST(hostile_fits, huge_and_tiny_numbers_are_survived) {
  for (const char* text : {"a+b*x", "a+b*ln(x)+c/ln(x)", "a*exp(-b*x)", "a*x^9+b*x"}) {
    fitOf(text, {1e-300, 1e-150, 1, 1e150, 1e300}, {1e300, -1e300, 1e-300, 0, 5});
    fitOf(text, {1e300, 1e300, 1e300, 1e300}, {0, 0, 0, 0});
  }
}

TEST(hostile_fits, the_longest_nonlinear_equation_over_many_points_comes_to_an_end) {
  std::string text = "a*exp(b*x)";
  while (text.size() + 16 < solver::longestExpression)
    text += "+sin(c*x+" + std::to_string(text.size()) + ")";
  std::vector<double> x, y;
  for (int k = 0; k < 2000; ++k) x.push_back(k * 1e-4), y.push_back(std::cos(k * 0.01));
  const auto model = fitOf(text, x, y);
  EXPECT_EQ(model->failureReason().find("cannot be read"), std::string::npos)
      << model->failureReason();
}

}  // namespace
}  // namespace pelmora::test
