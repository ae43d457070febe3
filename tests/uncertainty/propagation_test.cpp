// SPDX-License-Identifier: MIT
#include "uncertainty/propagation.h"

#include <pelmora/calibration/failure.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace pelmora::uncertainty {
namespace {

double sumOf(std::span<const double> x) { return x[0] + x[1]; }
double differenceOf(std::span<const double> x) { return x[0] - x[1]; }

TEST(propagation, adds_independent_inputs_in_quadrature) {
  const std::vector<Input> inputs{{"a", 1, 3}, {"b", 2, 4}};
  EXPECT_NEAR(propagate(sumOf, inputs).standardUncertainty, 5, 1e-12);
}

TEST(propagation, adds_a_common_error_in_a_sum_and_cancels_it_in_a_difference) {
  const std::vector<Input> inputs{{"a", 1, 3}, {"b", 2, 3}};
  const std::vector<Correlation> common{{0, 1, 1}};
  EXPECT_NEAR(propagate(sumOf, inputs, common).standardUncertainty, 6, 1e-12);
  EXPECT_NEAR(propagate(differenceOf, inputs, common).standardUncertainty, 0, 1e-7);
}

TEST(propagation, has_derivatives_of_curved_models_to_many_digits) {
  const std::vector<Input> inputs{{"x", 1, 0.01}};
  const Propagation result =
      propagate([](std::span<const double> x) { return std::exp(x[0]); }, inputs);
  EXPECT_NEAR(result.contributions[0].sensitivity, std::exp(1.0), 1e-9);
}

TEST(propagation, leaves_out_what_is_known_exactly) {
  const std::vector<Input> inputs{{"a", 1, 0, Distribution::normal, 1}, {"b", 2, 4}};
  const Propagation result = propagate(sumOf, inputs);
  EXPECT_DOUBLE_EQ(result.standardUncertainty, 4);
  EXPECT_TRUE(std::isinf(result.degreesOfFreedom));
}

// Welch-Satterthwaite by hand: (1 + 4)^2 / (1 / 4 + 16 / 9).
TEST(propagation, weighs_degrees_of_freedom) {
  const std::vector<Input> inputs{{"a", 0, 1, Distribution::normal, 4},
                                  {"b", 0, 2, Distribution::normal, 9}};
  EXPECT_NEAR(propagate(sumOf, inputs).degreesOfFreedom, 25 / (1.0 / 4 + 16.0 / 9), 1e-9);
}

std::string refusal(const std::vector<Input>& inputs,
                    const std::vector<Correlation>& correlations) {
  try {
    (void)propagate(sumOf, inputs, correlations);
  } catch (const calibration::BadData& failure) {
    return failure.what();
  }
  return "nothing was refused";
}

TEST(propagation, refuses_inputs_that_mean_nothing) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(refusal({{"flow", nan, 1}, {"b", 0, 1}}, {}), "input 'flow' has no finite estimate");
  EXPECT_EQ(refusal({{"flow", 1, -1}, {"b", 0, 1}}, {}),
            "input 'flow' has no valid standard uncertainty");
  EXPECT_EQ(refusal({{"flow", 1, 1, Distribution::normal, 0}, {"b", 0, 1}}, {}),
            "input 'flow' has fewer than one degree of freedom");
  EXPECT_EQ(refusal({{"a", 0, 1}, {"b", 0, 1}}, {{0, 1, 1.5}}),
            "the correlation of 'a' and 'b' is not between -1 and 1");
  EXPECT_EQ(refusal({{"a", 0, 1}, {"b", 0, 1}}, {{0, 1, 0.5}, {1, 0, 0.5}}),
            "the correlation of 'a' and 'b' is given twice");
  EXPECT_EQ(refusal({{"a", 0, 1}, {"b", 0, 1}}, {{0, 2, 0.5}}),
            "a correlation does not name two inputs");
}

TEST(propagation, names_the_input_beside_which_the_model_ends) {
  const std::vector<Input> inputs{{"flow", 0, 1}};
  try {
    (void)propagate([](std::span<const double> x) { return std::sqrt(x[0] - 0.1); }, inputs);
    FAIL() << "nothing was refused";
  } catch (const calibration::BadData& failure) {
    EXPECT_STREQ(failure.what(), "the measurement model has no value near the estimate of 'flow'");
  }
}

}  // namespace
}  // namespace pelmora::uncertainty
