// SPDX-License-Identifier: MIT
#include "uncertainty/monte_carlo.h"

#include "uncertainty/distribution.h"

#include <pelmora/calibration/failure.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace pelmora::uncertainty {
namespace {

double sumOfAll(std::span<const double> x) {
  double sum = 0;
  for (const double each : x) sum += each;
  return sum;
}

// With a million trials an end of the interval is uncertain by about 0.4 % of u.
constexpr double drawnEnd = 0.012;

// Four inputs of one kind: 95 % intervals of JCGM 101:2008, 9.2. Table 2: normal, +-3.92; table 3:
// rectangular, +-3.88.
TEST(monte_carlo, reproduces_the_additive_model_of_the_supplement) {
  MonteCarloOptions options;
  options.probability = 0.95;
  options.significantDigits = 3;
  const std::vector<Input> normal(4, Input{"x", 0, 1, Distribution::normal});
  EXPECT_NEAR(monteCarlo(sumOfAll, normal, {}, options).halfWidth(), 3.92, 2 * drawnEnd);
  const std::vector<Input> rectangular(4, Input{"x", 0, 1, Distribution::rectangular});
  EXPECT_NEAR(monteCarlo(sumOfAll, rectangular, {}, options).halfWidth(), 3.88, 2 * drawnEnd);
}

TEST(monte_carlo, ends_before_the_block_whose_turn_is_refused) {
  struct Enough {};
  const std::vector<Input> inputs(4, Input{"x", 0, 1, Distribution::normal});
  MonteCarloOptions options;
  options.threads = 1;
  options.mostTrials = 50'000;
  options.significantDigits = 9;  // never stable
  int asked = 0, last = 0;
  options.goOn = [&] {
    if (++asked == last) throw Enough();
  };
  EXPECT_EQ(monteCarlo(sumOfAll, inputs, {}, options).trials, options.mostTrials);
  const int all = asked;
  EXPECT_EQ(all, 5);
  for (last = 1; last <= all; ++last) {
    asked = 0;
    EXPECT_THROW((void)monteCarlo(sumOfAll, inputs, {}, options), Enough) << last;
  }
}

// The same with one rectangular input ten times as wide: table 4, +-17.0.
TEST(monte_carlo, sees_an_input_that_is_not_normal_dominate) {
  std::vector<Input> inputs(4, Input{"x", 0, 1, Distribution::rectangular});
  inputs[3].standardUncertainty = 10;
  MonteCarloOptions options;
  options.probability = 0.95;
  options.significantDigits = 3;
  const MonteCarloResult result = monteCarlo(sumOfAll, inputs, {}, options);
  EXPECT_NEAR(result.halfWidth(), 17.0, 0.06);
  EXPECT_NEAR(result.standardDeviation, 10.1, 0.06);
}

TEST(monte_carlo, draws_every_distribution_with_its_standard_deviation) {
  for (const auto distribution : {Distribution::normal, Distribution::rectangular,
                                  Distribution::triangular, Distribution::uShaped}) {
    const std::vector<Input> input{{"x", 5, 0.25, distribution}};
    const MonteCarloResult result =
        monteCarlo(sumOfAll, input, {}, {.mostTrials = 400'000, .significantDigits = 4});
    EXPECT_NEAR(result.mean, 5, 0.0015) << distributionName(distribution);
    EXPECT_NEAR(result.standardDeviation, 0.25, 0.0012) << distributionName(distribution);
  }
}

// Half of Student's distribution of 5 degrees of freedom lies within +-0.7267, 95 % within +-2.571.
TEST(monte_carlo, draws_students_distribution_for_finite_degrees_of_freedom) {
  const std::vector<Input> input{{"x", 0, 1, Distribution::normal, 5}};
  MonteCarloOptions options{.mostTrials = 1'000'000, .significantDigits = 4};
  options.probability = 0.5;
  EXPECT_NEAR(monteCarlo(sumOfAll, input, {}, options).halfWidth(), 0.7267, 0.005);
  options.probability = 0.95;
  EXPECT_NEAR(monteCarlo(sumOfAll, input, {}, options).halfWidth(), 2.571, 0.02);
}

TEST(monte_carlo, draws_correlated_inputs_together) {
  const std::vector<Input> inputs{{"a", 0, 1}, {"b", 0, 2}};
  const MonteCarloOptions options{.mostTrials = 400'000, .significantDigits = 4};
  for (const double r : {-1.0, -0.5, 0.0, 0.7, 1.0}) {
    const std::vector<Correlation> correlations{{0, 1, r}};
    EXPECT_NEAR(monteCarlo(sumOfAll, inputs, correlations, options).standardDeviation,
                std::sqrt(1 + 4 + 4 * r), 0.015)
        << r;
  }
}

TEST(monte_carlo, finds_the_shortest_interval_of_a_skewed_result) {
  const std::vector<Input> input{{"x", 0, 1}};
  const auto square = [](std::span<const double> x) { return x[0] * x[0]; };
  MonteCarloOptions options{.mostTrials = 1'000'000, .significantDigits = 3};
  options.probability = 0.95;
  const MonteCarloResult result = monteCarlo(square, input, {}, options);
  // Chi squared with one degree of freedom: 95 % lie below 3.841.
  EXPECT_NEAR(result.shortHigh, 3.841, 0.03);
  EXPECT_LT(result.shortLow, 1e-3);
  EXPECT_GT(result.high, 4.9);  // 97.5 % lie below 5.024
}

TEST(monte_carlo, gives_the_same_result_with_any_number_of_threads) {
  const std::vector<Input> inputs{{"a", 1, 0.1, Distribution::normal, 7},
                                  {"b", 2, 0.1, Distribution::triangular},
                                  {"c", 2, 0.1, Distribution::uShaped}};
  MonteCarloOptions options{.mostTrials = 200'000, .significantDigits = 4};
  options.threads = 1;
  const MonteCarloResult one = monteCarlo(sumOfAll, inputs, {}, options);
  for (const unsigned threads : {2U, 5U}) {
    options.threads = threads;
    const MonteCarloResult many = monteCarlo(sumOfAll, inputs, {}, options);
    EXPECT_EQ(many.mean, one.mean);
    EXPECT_EQ(many.standardDeviation, one.standardDeviation);
    EXPECT_EQ(many.low, one.low);
    EXPECT_EQ(many.shortHigh, one.shortHigh);
    EXPECT_EQ(many.trials, one.trials);
  }
  options.seed = 2;
  EXPECT_NE(monteCarlo(sumOfAll, inputs, {}, options).mean, one.mean);
}

TEST(monte_carlo, stops_once_the_digits_are_certain) {
  const std::vector<Input> inputs(4, Input{"x", 0, 1, Distribution::rectangular});
  const MonteCarloResult coarse = monteCarlo(sumOfAll, inputs, {}, {.significantDigits = 1});
  EXPECT_TRUE(coarse.isStable);
  EXPECT_LT(coarse.trials, 300'000U);
  const MonteCarloResult fine =
      monteCarlo(sumOfAll, inputs, {}, {.mostTrials = 200'000, .significantDigits = 6});
  EXPECT_FALSE(fine.isStable);
  EXPECT_EQ(fine.trials, 200'000U);
}

std::string refusal(const Model& model, const std::vector<Input>& inputs,
                    const std::vector<Correlation>& correlations) {
  try {
    (void)monteCarlo(model, inputs, correlations, {.mostTrials = 20'000});
  } catch (const calibration::BadData& failure) {
    return failure.what();
  }
  return "nothing was refused";
}

TEST(monte_carlo, refuses_what_it_cannot_draw) {
  EXPECT_EQ(refusal(sumOfAll, {{"a", 0, 1, Distribution::rectangular}, {"b", 0, 1}}, {{0, 1, 0.5}}),
            "the correlated input 'a' is not normal");
  EXPECT_EQ(refusal(sumOfAll, {{"a", 0, 1, Distribution::normal, 4}, {"b", 0, 1}}, {{0, 1, 0.5}}),
            "the correlated inputs 'a' and 'b' differ in their degrees of freedom");
  EXPECT_EQ(refusal(sumOfAll, {{"a", 0, 1}, {"b", 0, 1}, {"c", 0, 1}},
                    {{0, 1, 0.9}, {1, 2, 0.9}, {0, 2, -0.9}}),
            "the correlations contradict each other");
  EXPECT_EQ(refusal([](std::span<const double> x) { return std::sqrt(x[0]); }, {{"a", 1, 1}}, {}),
            "the measurement model has no value for some of its inputs");
}

}  // namespace
}  // namespace pelmora::uncertainty
