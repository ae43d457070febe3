// The examples of JCGM 100:2008, annex H, to the digits that it prints.
// SPDX-License-Identifier: MIT
#include "uncertainty/coverage.h"
#include "uncertainty/monte_carlo.h"
#include "uncertainty/propagation.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

namespace pelmora::uncertainty {
namespace {

constexpr double byHalfWidth(double halfWidth) { return halfWidth / 1.7320508075688772; }

// H.1: an end gauge against a standard of the same nominal length; nm, and 1/C.
struct EndGauge {
  // l = ls + d - ls (da theta + as dt)
  static double length(std::span<const double> x) {
    const double ls = x[0], d = x[1], alpha = x[2], theta = x[3], da = x[4], dt = x[5];
    return ls + d - ls * (da * theta + alpha * dt);
  }
  std::vector<Input> inputs{
      {"standard", 50.000623e6, 25, Distribution::normal, 18},
      {"difference", 215, 9.7, Distribution::normal, 25.6},
      {"expansion", 11.5e-6, byHalfWidth(2e-6), Distribution::rectangular},
      {"temperature", -0.1, 0.41, Distribution::normal},
      {"difference of expansion", 0, byHalfWidth(1e-6), Distribution::rectangular, 50},
      {"difference of temperature", 0, byHalfWidth(0.05), Distribution::rectangular, 2},
  };
};

TEST(gum_h1_end_gauge, has_the_printed_components) {
  const EndGauge gauge;
  const Propagation result = propagate(EndGauge::length, gauge.inputs);
  EXPECT_NEAR(result.value, 50.000838e6, 0.5);
  const std::array printed{25.0, 9.7, 0.0, 0.0, 2.9, 16.6};
  for (std::size_t i = 0; i < printed.size(); ++i) {
    EXPECT_NEAR(std::abs(result.contributions[i].uncertainty), printed[i], 0.05)
        << gauge.inputs[i].name;
  }
  EXPECT_NEAR(result.standardUncertainty, 32, 0.5);
}

TEST(gum_h1_end_gauge, has_the_printed_expanded_uncertainty) {
  const EndGauge gauge;
  const Propagation result = propagate(EndGauge::length, gauge.inputs);
  // Printed as 16.7, from rounded components; cut to 16.
  EXPECT_NEAR(result.degreesOfFreedom, 16.7, 0.1);
  EXPECT_NEAR(coverageFactor(0.99, result.degreesOfFreedom), 2.92, 0.005);
  // The guide multiplies rounded numbers: 2.92 x 32 nm.
  EXPECT_NEAR(2.92 * std::round(result.standardUncertainty), 93, 0.5);
}

TEST(gum_h1_end_gauge, has_the_printed_second_order_terms) {
  const EndGauge gauge;
  const double first = propagate(EndGauge::length, gauge.inputs).standardUncertainty;
  const double higher = higherOrderVariance(EndGauge::length, gauge.inputs);
  // Printed from rounded inputs.
  EXPECT_NEAR(std::sqrt(higher), std::hypot(11.7, 1.7), 0.2);
  EXPECT_NEAR(std::sqrt(first * first + higher), 34, 0.5);
}

// H.2: resistance R, reactance X and impedance Z from five observations of voltage, current and
// phase at a time.
struct Impedance {
  static constexpr std::array<double, 5> volt{5.007, 4.994, 5.005, 4.990, 4.999};
  static constexpr std::array<double, 5> milliampere{19.663, 19.639, 19.640, 19.685, 19.678};
  static constexpr std::array<double, 5> phase{1.0456, 1.0438, 1.0468, 1.0428, 1.0433};

  static double mean(const std::array<double, 5>& v) {
    return (v[0] + v[1] + v[2] + v[3] + v[4]) / 5;
  }
  // Covariance of the means.
  static double joint(const std::array<double, 5>& a, const std::array<double, 5>& b) {
    double sum = 0;
    for (std::size_t i = 0; i < 5; ++i) sum += (a[i] - mean(a)) * (b[i] - mean(b));
    return sum / (5 * 4);
  }
  static double correlation(const std::array<double, 5>& a, const std::array<double, 5>& b) {
    return joint(a, b) / std::sqrt(joint(a, a) * joint(b, b));
  }

  std::vector<Input> inputs{
      {"V", mean(volt), std::sqrt(joint(volt, volt)), Distribution::normal, 4},
      {"I", mean(milliampere) / 1000, std::sqrt(joint(milliampere, milliampere)) / 1000,
       Distribution::normal, 4},
      {"phi", mean(phase), std::sqrt(joint(phase, phase)), Distribution::normal, 4}};
  std::vector<Correlation> correlations{{0, 1, correlation(volt, milliampere)},
                                        {0, 2, correlation(volt, phase)},
                                        {1, 2, correlation(milliampere, phase)}};

  static double r(std::span<const double> x) { return x[0] / x[1] * std::cos(x[2]); }
  static double x(std::span<const double> x) { return x[0] / x[1] * std::sin(x[2]); }
  static double z(std::span<const double> x) { return x[0] / x[1]; }
};

TEST(gum_h2_impedance, has_the_printed_inputs) {
  const Impedance it;
  EXPECT_NEAR(it.inputs[0].standardUncertainty, 0.0032, 5e-5);
  EXPECT_NEAR(it.inputs[1].standardUncertainty, 0.0095e-3, 5e-8);
  EXPECT_NEAR(it.inputs[2].standardUncertainty, 0.00075, 5e-6);
  EXPECT_NEAR(it.correlations[0].coefficient, -0.36, 0.005);
  EXPECT_NEAR(it.correlations[1].coefficient, 0.86, 0.005);
  EXPECT_NEAR(it.correlations[2].coefficient, -0.65, 0.005);
}

TEST(gum_h2_impedance, has_the_printed_results) {
  const Impedance it;
  const Propagation r = propagate(Impedance::r, it.inputs, it.correlations);
  const Propagation x = propagate(Impedance::x, it.inputs, it.correlations);
  const Propagation z = propagate(Impedance::z, it.inputs, it.correlations);
  EXPECT_NEAR(r.value, 127.732, 5e-4);
  EXPECT_NEAR(x.value, 219.847, 5e-4);
  EXPECT_NEAR(z.value, 254.260, 5e-4);
  EXPECT_NEAR(r.standardUncertainty, 0.071, 5e-4);
  EXPECT_NEAR(x.standardUncertainty, 0.295, 1e-3);  // 0.2956, printed as 0.295
  EXPECT_NEAR(z.standardUncertainty, 0.236, 5e-4);
  // All inputs come from the same five observations.
  EXPECT_DOUBLE_EQ(r.degreesOfFreedom, 4);
}

TEST(gum_h2_impedance, has_the_printed_correlations_of_its_results) {
  const Impedance it;
  const Propagation r = propagate(Impedance::r, it.inputs, it.correlations);
  const Propagation x = propagate(Impedance::x, it.inputs, it.correlations);
  const Propagation z = propagate(Impedance::z, it.inputs, it.correlations);
  const auto correlation = [&](const Propagation& a, const Propagation& b) {
    return covariance(a.contributions, b.contributions, it.correlations) /
           (a.standardUncertainty * b.standardUncertainty);
  };
  EXPECT_NEAR(correlation(r, x), -0.588, 5e-4);
  EXPECT_NEAR(correlation(r, z), -0.485, 5e-4);
  EXPECT_NEAR(correlation(x, z), 0.993, 5e-4);
}

// H.3: a thermometer's correction at 30 C, intercept and slope at 20 C fitted to 11 readings.
TEST(gum_h3_thermometer, has_the_printed_correction) {
  const std::vector<Input> inputs{{"intercept", -0.1712, 0.0029, Distribution::normal, 9},
                                  {"slope", 0.00218, 0.00067, Distribution::normal, 9}};
  const std::vector<Correlation> correlations{{0, 1, -0.930}};
  const Propagation result = propagate(
      [](std::span<const double> y) { return y[0] + y[1] * (30.0 - 20.0); }, inputs, correlations);
  EXPECT_NEAR(result.value, -0.1494, 5e-5);
  EXPECT_NEAR(result.standardUncertainty, 0.0041, 5e-5);
  EXPECT_DOUBLE_EQ(result.degreesOfFreedom, 9);
}

// Table G.2 of the GUM.
TEST(coverage_factor, has_the_printed_values) {
  EXPECT_NEAR(coverageFactor(0.9545, 1), 13.97, 0.005);
  EXPECT_NEAR(coverageFactor(0.9545, 10), 2.28, 0.005);
  EXPECT_NEAR(coverageFactor(0.95, 16), 2.12, 0.005);
  EXPECT_NEAR(coverageFactor(0.9973, 50), 3.16, 0.005);
  EXPECT_NEAR(coverageFactor(0.95, knownExactly), 1.960, 0.0005);
  EXPECT_NEAR(coverageFactor(twoSigmaProbability, knownExactly), 2, 1e-9);
  EXPECT_NEAR(coverageFactor(twoSigmaProbability, 1e12), 2, 1e-9);
}

TEST(coverage_factor, cuts_degrees_of_freedom_to_whole_ones) {
  EXPECT_EQ(coverageFactor(0.95, 16.9), coverageFactor(0.95, 16));
  EXPECT_EQ(coverageFactor(0.95, 0.7), coverageFactor(0.95, 1));
}

}  // namespace
}  // namespace pelmora::uncertainty
