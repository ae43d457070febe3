// SPDX-License-Identifier: MIT
#include "tests/solver/fit_helpers.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <limits>

namespace pelmora::test {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

// y = 1 + 2 x with residuals 1, -2, 1 beside it: the line stays, RSS 6, s^2 = 6 / 1,
// var(b) = s^2 / 2, var(a) = s^2 (1/3 + 2^2 / 2), TSS = (4-5)^2+(3-5)^2+(8-5)^2.
const std::vector<double> lineX{1, 2, 3}, lineY{4, 3, 8};

std::string reasonOf(const std::string& expression, std::vector<double> x, std::vector<double> y) {
  const auto model = fitOf(expression, std::move(x), std::move(y));
  EXPECT_FALSE(model->solutionFound());
  EXPECT_TRUE(model->parameters().empty());
  EXPECT_TRUE(model->results().Columns.empty());
  EXPECT_TRUE(model->evaluate({{1.0}}).empty());
  EXPECT_TRUE(model->covariance().empty());
  EXPECT_EQ(model->statistics().ResidualSumOfSquares, 0);
  EXPECT_EQ(model->statistics().Observations, 0);
  return model->failureReason();
}

TEST(solver_model, a_line_has_the_textbook_parameters_and_errors) {
  const auto model = fitOf("a+b*x", lineX, lineY);
  ASSERT_TRUE(model->solutionFound()) << model->failureReason();
  EXPECT_TRUE(model->failureReason().empty());
  const auto parameters = model->parameters();
  EXPECT_EQ(parameters[0].Name, "a");
  EXPECT_DOUBLE_EQ(parameters[0].Value, 1);
  EXPECT_DOUBLE_EQ(parameters[1].Value, 2);
  EXPECT_DOUBLE_EQ(parameters[0].StandardError, std::sqrt(14));
  EXPECT_DOUBLE_EQ(parameters[1].StandardError, std::sqrt(3));
  const auto covariance = model->covariance();
  EXPECT_DOUBLE_EQ(covariance[0], 14);
  EXPECT_DOUBLE_EQ(covariance[1], -6);
  EXPECT_DOUBLE_EQ(covariance[2], -6);
  EXPECT_DOUBLE_EQ(covariance[3], 3);
}

TEST(solver_model, a_line_has_the_textbook_statistics) {
  const auto statistics = fitOf("a+b*x", lineX, lineY)->statistics();
  EXPECT_EQ(statistics.Observations, 3);
  EXPECT_EQ(statistics.Iterations, 0);
  EXPECT_DOUBLE_EQ(statistics.ResidualSumOfSquares, 6);
  EXPECT_DOUBLE_EQ(statistics.ResidualStandardError, std::sqrt(6));
  EXPECT_DOUBLE_EQ(statistics.RSquared, 1 - 6.0 / 14);
  EXPECT_DOUBLE_EQ(statistics.AdjustedRSquared, 1 - 6.0 / 14 * 2 / 1);
  EXPECT_DOUBLE_EQ(statistics.RegressionSumOfSquares, 8);
}

TEST(solver_model, results_are_x_observed_and_residual) {
  const auto table = fitOf("a+b*x", lineX, lineY)->results();
  EXPECT_EQ(table.Names, (std::vector<std::string>{"Roshko", "Strouhal", "Residual"}));
  EXPECT_EQ(table.Columns[0], lineX);
  EXPECT_EQ(table.Columns[1], lineY);
  EXPECT_DOUBLE_EQ(table.Columns[2][0], 1);
  EXPECT_DOUBLE_EQ(table.Columns[2][1], -2);
  EXPECT_DOUBLE_EQ(table.Columns[2][2], 1);
}

TEST(solver_model, the_curve_and_its_standard_error_are_told_at_any_x) {
  // s^2 (1/n + (x - mean)^2 / Sxx): 6 / 3 at the mean, 6 (1/3 + 4/2) at 4. Once as a polynomial and
  // once as an equation of other terms, whose residual variance is made the same by the same
  // points.
  const auto model = fitOf("a+b*x", lineX, lineY);
  const std::vector<double> x{2, 4};
  EXPECT_DOUBLE_EQ(model->evaluate(x)[1], 9);
  EXPECT_DOUBLE_EQ(model->standardErrorsOfCurve(x)[0], std::sqrt(2));
  EXPECT_DOUBLE_EQ(model->standardErrorsOfCurve(x)[1], std::sqrt(14));
  const auto other = fitOf("0*x+a+b*x", lineX, lineY);
  EXPECT_DOUBLE_EQ(other->evaluate(x)[1], 9);
  EXPECT_DOUBLE_EQ(other->standardErrorsOfCurve(x)[1], std::sqrt(14));
}

TEST(solver_model, its_curve_may_be_sampled_beyond_the_run) {
  const std::vector<double> x{2, 4};
  EXPECT_EQ(fitOf("a+b*x", lineX, lineY)->sampleCurve(x), (std::vector<double>{5, 9}));
}

TEST(solver_model, parameters_come_in_order_of_their_letters) {
  const auto parameters = fitOf("c*x+b", lineX, lineY)->parameters();
  EXPECT_EQ(parameters[0].Name, "b");
  EXPECT_DOUBLE_EQ(parameters[0].Value, 1);
  EXPECT_EQ(parameters[1].Name, "c");
  EXPECT_DOUBLE_EQ(parameters[1].Value, 2);
}

TEST(solver_model, a_part_without_parameters_is_kept_apart) {
  const auto model = fitOf("a+b*x+x^3", {1, 2, 3}, {4 + 1, 3 + 8, 8 + 27});
  ASSERT_TRUE(model->solutionFound());
  EXPECT_NEAR(model->parameters()[0].Value, 1, 1e-14);
  EXPECT_NEAR(model->parameters()[1].Value, 2, 1e-14);
}

TEST(solver_model, an_equation_that_cannot_be_read_is_no_solution) {
  EXPECT_EQ(reasonOf("a+b*y(x)", lineX, lineY),
            "the equation cannot be read: expected an operator before '(' at position 6");
  EXPECT_EQ(reasonOf("3*x", lineX, lineY), "the equation has no parameters");
}

TEST(solver_model, too_few_points_are_no_solution) {
  EXPECT_EQ(reasonOf("a+b*x", {1, 2}, {1, 2}),
            "too few points: 2 for 2 parameters, at least 3 are needed");
  EXPECT_EQ(reasonOf("a+b*x", {}, {}), "too few points: 0 for 2 parameters, at least 3 are needed");
}

TEST(solver_model, parameters_that_the_data_cannot_tell_apart_are_named) {
  EXPECT_EQ(
      reasonOf("a+b*x+c*x^2", {1, 2, 1, 2, 1}, {1, 2, 3, 4, 5}),
      "the data determine only 2 of 3 parameters: the term of c depends on the others; there are "
      "2 different values of x");
  EXPECT_EQ(reasonOf("a+b+c*x", lineX, {4, 3, 8}),
            "too few points: 3 for 3 parameters, at least 4 are needed");
  EXPECT_EQ(reasonOf("a+b+c*x", {1, 2, 3, 4}, {4, 3, 8, 9}),
            "the data determine only 2 of 3 parameters: the term of b depends on the others");
  EXPECT_EQ(reasonOf("a*sin(x)^2+b*cos(x)^2+c", {1, 2, 3, 4}, {4, 3, 8, 9}),
            "the data determine only 2 of 3 parameters: the term of c depends on the others");
  EXPECT_EQ(reasonOf("a+b*x-b*x", {1, 2, 3, 4}, {4, 3, 8, 9}),
            "the data determine only 1 of 2 parameters: the term of b depends on the others");
}

TEST(solver_model, values_that_are_not_finite_are_no_solution) {
  EXPECT_EQ(reasonOf("a+b*ln(x)", {-1, 2, 3}, lineY), "a term is not finite at x = -1, y = 4");
  EXPECT_EQ(reasonOf("a+b/x", {0, 2, 3}, lineY), "a term divides by zero at x = 0, y = 4");
  EXPECT_EQ(reasonOf("a+b/ln(x)", {1, 2, 3}, lineY), "a term divides by zero at x = 1, y = 4");
  EXPECT_EQ(reasonOf("a+b*x", lineX, {4, nan, 8}), "the value of Y in row 2 is not finite");
  EXPECT_EQ(reasonOf("a+b*x", {1, 2, 1 / 0.0}, lineY), "the value of X in row 3 is not finite");
  EXPECT_EQ(reasonOf("a*x+b*sqrt(x)+c*x^5", {-1, 2, 3, 4}, {1, 2, 3, 4}),
            "the term of b is not finite at x = -1, y = 1");
}

TEST(solver_model, data_without_the_symbols_are_no_solution) {
  auto data = dataOf(lineX, lineY);
  data->Symbols = {"X", ""};
  EXPECT_EQ(fitOf("a+b*x", data)->failureReason(), "no column has the symbol Y");
  EXPECT_EQ(fitOf("a+b*x", nullptr)->failureReason(), "there are no data");
  data->Symbols = {"Y", "X"};
  EXPECT_DOUBLE_EQ(fitOf("a+b*x", data)->evaluate({{5.5}})[0], 15.0 / 7);  // 2 + 4 / 14 (y - 5)
}

TEST(solver_model, another_fit_replaces_the_last_one) {
  auto model = fitOf("a+b*x", lineX, lineY);
  model->attach(dataOf({1, 2, 3}, {3, 5, nan}));
  EXPECT_FALSE(model->solutionFound());
  model->attach(dataOf({1, 2, 3}, {3, 5, 7}));
  EXPECT_DOUBLE_EQ(model->parameters()[1].Value, 2);
}

TEST(solver_model, changed_points_are_fitted_anew_by_the_same_engine) {
  const auto engine = createSolver();
  auto data = dataOf(lineX, lineY);
  for (const double top : {8.0, 11.0}) {
    data->Columns[1][2] = top;
    const auto model = engine->createModel();
    model->Definition = {"line", "a+b*x"};
    model->attach(data);
    EXPECT_DOUBLE_EQ(model->parameters()[1].Value, (top - 4) / 2);
  }
}

TEST(solver_model, constant_observations_have_nothing_to_explain) {
  const auto statistics = fitOf("a+b*x", {1, 2, 3}, {5, 5, 5})->statistics();
  EXPECT_EQ(statistics.RSquared, 0);
  EXPECT_EQ(statistics.AdjustedRSquared, 0);
}

TEST(solver_model, the_log_tells_why_there_is_no_solution) {
  const ScratchFolder folder;
  fitOf("a+b*x", {1, 2}, {1, 2})->writeLog(folder.file("log.txt"));
  std::ifstream file(folder.file("log.txt"), std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(text,
            "Equation: Test\r\nY = a+b*x\r\nNo solution: too few points: 2 for 2 parameters, at "
            "least 3 are "
            "needed\r\n");
}

TEST(solver_model, a_log_that_cannot_be_written_is_passed_over) {
  EXPECT_NO_THROW(fitOf("a+b*x", {1, 2}, {1, 2})->writeLog("/no such folder/log.txt"));
}

}  // namespace
}  // namespace pelmora::test
