// What a caller of fitReference can rely on.
// SPDX-License-Identifier: MIT
#include "solver/reference/reference_curve.h"

#include <pelmora/error.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace pelmora::solver::reference {
namespace {

using testing::HasSubstr;
using Numbers = std::vector<double>;

double rotor(double x) {
  return 1300 * (1 - 0.9 / (x + 3) - 0.01 * std::exp(-std::pow(std::log(x / 90), 2)));
}

struct Series {
  Numbers x, y;
};

Series simulated(std::size_t n, double noise, unsigned seed, double low = 10, double high = 1500) {
  std::mt19937 random(seed);
  std::normal_distribution<double> normal;
  Series s;
  for (std::size_t i = 0; i < n; ++i) {
    const double share = static_cast<double>(i) / static_cast<double>(n - 1);
    s.x.push_back(low * std::pow(high / low, share));
    s.y.push_back(rotor(s.x.back()) * (1 + noise * normal(random)));
  }
  return s;
}

std::string refusal(const ReferenceData& data, const ReferenceOptions& options = {}) {
  try {
    static_cast<void>(fitReference(data, options));
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), 5);
    return error.what();
  }
  return "";
}

TEST(reference_curve, stops_before_any_pass_when_asked) {
  const Series s = simulated(500, 0.001, 3);
  int passes = 0;
  ReferenceOptions options;
  options.stopRequested = [&] {
    ++passes;
    return false;
  };
  const ReferenceCurve curve = fitReference({s.x, s.y}, options);
  ASSERT_GT(passes, 10);
  for (const int last : {1, passes / 2, passes}) {
    int asked = 0;
    options.stopRequested = [&] { return ++asked == last; };
    EXPECT_THROW((void)fitReference({s.x, s.y}, options), Stopped);
    EXPECT_EQ(asked, last);
  }
  EXPECT_THROW((void)curve.evaluate(s.x, [] { return true; }), Stopped);
}

TEST(reference_curve, follows_exact_points_and_their_derivative) {
  const Series s = simulated(40, 0, 1);
  const ReferenceCurve curve = fitReference({s.x, s.y});
  for (const double x : {12.0, 90.0, 400.0, 1400.0}) {
    const auto at = curve.evaluate({{x}})[0];
    const double h = 1e-4 * x;
    const double derivative = (rotor(x + h) - rotor(x - h)) / (2 * h);
    EXPECT_NEAR(at.value, rotor(x), 5e-5 * rotor(x)) << x;
    EXPECT_NEAR(at.derivative * x, derivative * x, 2e-3 * rotor(x)) << x;
    EXPECT_LT(at.curveSd, at.newPointSd);
  }
}

TEST(reference_curve, does_not_depend_on_the_order_of_points_and_questions) {
  const Series s = simulated(15, 4e-4, 2);
  const Series reversed{{s.x.rbegin(), s.x.rend()}, {s.y.rbegin(), s.y.rend()}};
  const Numbers up{11, 50, 900}, down{900, 50, 11};
  const auto a = fitReference({s.x, s.y}).evaluate(up);
  const auto b = fitReference({reversed.x, reversed.y}).evaluate(down);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_NEAR(a[i].value, b[2 - i].value, 1e-12 * a[i].value);
    EXPECT_NEAR(a[i].curveSd, b[2 - i].curveSd, 1e-9 * a[i].curveSd);
  }
}

TEST(reference_curve, scales_with_the_units_of_both_numbers) {
  const Series s = simulated(12, 4e-4, 3);
  Series other = s;
  for (double& x : other.x) x *= 1000;
  for (double& y : other.y) y /= 264.172;
  const auto a = fitReference({s.x, s.y}).evaluate({{70.0}})[0];
  const auto b = fitReference({other.x, other.y}).evaluate({{70000.0}})[0];
  EXPECT_NEAR(b.value * 264.172, a.value, 1e-10 * a.value);
  EXPECT_NEAR(b.derivative * 264172, a.derivative, 1e-7 * std::abs(a.derivative));
  EXPECT_NEAR(b.curveSd * 264.172, a.curveSd, 1e-7 * a.curveSd);
  EXPECT_NEAR(b.newPointSd * 264.172, a.newPointSd, 1e-7 * a.newPointSd);
}

TEST(reference_curve, reports_on_excluded_points_without_using_them) {
  Series s = simulated(14, 3e-4, 4);
  const ReferenceCurve without = fitReference({s.x, s.y});
  s.x.push_back(77);
  s.y.push_back(1.05 * rotor(77));
  s.x.push_back(-1);
  s.y.push_back(0);
  std::vector<std::uint8_t> excluded(s.x.size(), 0);
  excluded[14] = excluded[15] = 1;
  const ReferenceCurve with = fitReference({s.x, s.y, {}, excluded});
  EXPECT_EQ(with.summary(), without.summary());
  ASSERT_EQ(with.points().size(), 16U);
  EXPECT_EQ(with.points()[14].state, PointState::excluded);
  EXPECT_NEAR(with.points()[14].leaveOneOut, 0.05, 0.002);
  EXPECT_GT(with.points()[14].sigmas(), 20);
  EXPECT_EQ(with.points()[15].state, PointState::excluded);
}

TEST(reference_curve, band_is_wide_between_far_points_and_narrow_at_repeats) {
  Numbers x, y;
  std::mt19937 random(5);
  std::normal_distribution<double> normal;
  for (const double flow : {10.0, 20.0, 40.0, 80.0, 900.0, 1800.0}) {
    for (int i = 0; i < 5; ++i) {
      x.push_back(flow);
      y.push_back(rotor(flow) * (1 + 3e-4 * normal(random)));
    }
  }
  const auto at = fitReference({x, y}).evaluate({{80.0, 270.0, 900.0, 1e4}});
  EXPECT_GT(at[1].curveSd, 2 * at[0].curveSd);
  EXPECT_GT(at[1].curveSd, 2 * at[2].curveSd);
  EXPECT_GT(at[3].curveSd, at[2].curveSd);
}

TEST(reference_curve, noise_that_grows_towards_low_flows_is_noticed) {
  Numbers x, y;
  std::mt19937 random(6);
  std::normal_distribution<double> normal;
  for (int i = 0; i < 20; ++i) {
    const double flow = 10 * std::pow(100.0, i / 19.0);
    for (int r = 0; r < 5; ++r) {
      x.push_back(flow);
      y.push_back(rotor(flow) * (1 + 2e-4 * std::hypot(1, 50 / flow) * normal(random)));
    }
  }
  const ReferenceSummary s = fitReference({x, y}).summary();
  EXPECT_NEAR(s.noiseHigh, 2e-4, 0.7e-4);
  EXPECT_NEAR(s.noiseLow, 1e-3, 0.4e-3);
  EXPECT_GT(s.noiseLow, 2.5 * s.noiseHigh);
  EXPECT_EQ(s.points, 100U);
  EXPECT_EQ(s.flows, 20U);
  EXPECT_GT(s.effectiveParameters, 2);
  EXPECT_LT(s.effectiveParameters, 20);
}

TEST(reference_curve, a_shift_of_one_fluid_is_shared_out) {
  // Two fluids over the same flows, 0.04 % apart: the curve runs between them.
  Numbers x, y;
  std::vector<int> fluid;
  std::mt19937 random(7);
  std::normal_distribution<double> normal;
  for (int f = 0; f < 2; ++f) {
    for (int i = 0; i < 15; ++i) {
      x.push_back(20 * std::pow(40.0, (i + 0.5 * f) / 15));
      y.push_back(rotor(x.back()) * (1 + (f == 0 ? 2e-4 : -2e-4) + 5e-5 * normal(random)));
      fluid.push_back(7 + 4 * f);
    }
  }
  const ReferenceCurve curve = fitReference({x, y, fluid, {}});
  EXPECT_TRUE(curve.distrusted().empty());
  for (const auto& [at, wanted] : {std::pair{50.0, rotor(50)}, std::pair{300.0, rotor(300)}}) {
    const auto estimate = curve.evaluate({{at}})[0];
    EXPECT_NEAR(estimate.value, wanted, 2 * estimate.curveSd);
  }
}

TEST(reference_curve, many_fluids_are_taken_as_one) {
  const Series s = simulated(18, 3e-4, 11);
  std::vector<int> fluid;
  for (int i = 0; i < 18; ++i) fluid.push_back(i % 6);
  const auto at = fitReference({s.x, s.y, fluid, {}}).evaluate({{55.0}})[0];
  EXPECT_NEAR(at.value, rotor(55), 3 * at.curveSd);
}

TEST(reference_curve, quantities_that_change_sign_are_taken_absolutely) {
  Numbers x, y;
  for (int i = 0; i < 12; ++i) {
    x.push_back(10 * std::pow(100.0, i / 11.0));
    y.push_back(2 - 30 / x.back());
  }
  const ReferenceCurve curve = fitReference({x, y});
  EXPECT_FALSE(curve.summary().relative);
  EXPECT_NEAR(curve.evaluate({{25.0}})[0].value, 0.8, 0.02);
  EXPECT_THAT(refusal({x, y}, {.scale = ReferenceScale::relative}), HasSubstr("point 1 "));
}

TEST(reference_curve, four_points_get_a_curve_and_an_honest_band) {
  const Series s = simulated(4, 3e-4, 8, 10, 300);
  const auto at = fitReference({s.x, s.y}).evaluate({{55.0}})[0];
  EXPECT_NEAR(at.value, rotor(55), 2 * at.curveSd);
  EXPECT_GT(at.curveSd, 3e-4 * at.value);
}

TEST(reference_curve, thirty_thousand_points_nearly_equal_in_threes) {
  Series s;
  std::mt19937 random(9);
  std::normal_distribution<double> normal;
  for (int i = 0; i < 10000; ++i) {
    for (int r = 0; r < 3; ++r) {
      s.x.push_back(0.5 * std::pow(10000.0, i / 9999.0) * (1 + 1e-13 * r));
      s.y.push_back(rotor(s.x.back()) * (1 + 5e-4 * normal(random)));
    }
  }
  const ReferenceCurve curve = fitReference({s.x, s.y}, {.robust = false});
  EXPECT_NEAR(curve.summary().noiseHigh, 5e-4, 2e-5);
  for (const double x : {1.0, 30.0, 2000.0}) {
    const auto at = curve.evaluate({{x}})[0];
    EXPECT_NEAR(at.value, rotor(x), 4 * at.curveSd) << x;
    EXPECT_LT(at.curveSd, 1e-4 * at.value);
  }
}

TEST(reference_curve, what_cannot_be_fitted_is_refused_by_name) {
  const Series s = simulated(6, 1e-4, 10);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  Series bad = s;
  bad.x[2] = 0;
  EXPECT_THAT(refusal({bad.x, bad.y}), HasSubstr("Roshko number of point 3 "));
  bad = s;
  bad.y[5] = nan;
  EXPECT_THAT(refusal({bad.x, bad.y}), HasSubstr("Strouhal number of point 6 "));
  EXPECT_THAT(refusal({s.x, {s.y.data(), 5}}), HasSubstr("differ in length"));
  EXPECT_THAT(refusal({{s.x.data(), 3}, {s.y.data(), 3}}), HasSubstr("four points"));
  EXPECT_THAT(refusal({Numbers{1, 1, 2, 2, 2}, Numbers{5, 5, 5, 5, 5}}),
              HasSubstr("three different flows"));
  EXPECT_THROW(static_cast<void>(fitReference({s.x, s.y}).evaluate({{-1.0}})), Error);
}

}  // namespace
}  // namespace pelmora::solver::reference
