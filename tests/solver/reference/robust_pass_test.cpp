// Outliers do not bend the reference curve, and are named.
// SPDX-License-Identifier: MIT
#include "solver/reference/reference_curve.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <utility>
#include <vector>

namespace pelmora::solver::reference {
namespace {

using testing::ElementsAre;
using Numbers = std::vector<double>;

double rotor(double x) {
  return 1300 * (1 - 0.9 / (x + 3) - 0.01 * std::exp(-std::pow(std::log(x / 90), 2)));
}

struct Series {
  Numbers x, y;
};

Series simulated(int flows, int repeats, unsigned seed) {
  std::mt19937 random(seed);
  std::normal_distribution<double> normal;
  Series s;
  for (int i = 0; i < flows; ++i) {
    for (int r = 0; r < repeats; ++r) {
      s.x.push_back(10 * std::pow(120.0, static_cast<double>(i) / (flows - 1)));
      s.y.push_back(rotor(s.x.back()) * (1 + 3e-4 * normal(random)));
    }
  }
  return s;
}

double farthestFromTruth(const ReferenceCurve& curve) {
  Numbers x;
  for (int i = 0; i < 200; ++i) x.push_back(10 * std::pow(120.0, i / 199.0));
  const auto estimates = curve.evaluate(x);
  double worst = 0;
  for (std::size_t i = 0; i < x.size(); ++i)
    worst = std::max(worst, std::abs(estimates[i].value / rotor(x[i]) - 1));
  return worst;
}

TEST(robust_pass, one_bad_point_is_named_and_bends_nothing) {
  Series s = simulated(20, 1, 1);
  s.y[8] *= 1.008;
  const ReferenceCurve curve = fitReference({s.x, s.y});
  EXPECT_THAT(curve.distrusted(), ElementsAre(8));
  EXPECT_EQ(curve.points()[8].state, PointState::distrusted);
  EXPECT_NEAR(curve.points()[8].leaveOneOut, 0.008, 0.002);
  EXPECT_GT(curve.points()[8].sigmas(), 5);
  EXPECT_LT(farthestFromTruth(curve), 0.0015);
  const ReferenceCurve bent = fitReference({s.x, s.y}, {.robust = false});
  EXPECT_GT(farthestFromTruth(bent), farthestFromTruth(curve));
}

TEST(robust_pass, two_bad_points_side_by_side_are_named) {
  for (const double second : {1.007, 0.992}) {
    Series s = simulated(20, 1, 2);
    s.y[11] *= 1.008;
    s.y[12] *= second;
    const ReferenceCurve curve = fitReference({s.x, s.y});
    EXPECT_THAT(curve.distrusted(), ElementsAre(11, 12)) << second;
    EXPECT_LT(farthestFromTruth(curve), 0.002);
  }
}

TEST(robust_pass, bad_first_and_last_points_are_named) {
  for (const std::size_t bad : {std::size_t{0}, std::size_t{19}}) {
    Series s = simulated(20, 1, 3);
    s.y[bad] *= 1.03;
    EXPECT_THAT(fitReference({s.x, s.y}).distrusted(), ElementsAre(bad));
  }
}

TEST(robust_pass, a_fall_at_the_lowest_flow_is_believed) {
  Series s = simulated(20, 1, 3);
  s.y[0] *= 0.97;
  EXPECT_TRUE(fitReference({s.x, s.y}).distrusted().empty());
}

TEST(robust_pass, one_bad_repeat_among_six_flows_is_named) {
  Series s = simulated(6, 5, 4);
  s.y[17] *= 0.995;
  EXPECT_THAT(fitReference({s.x, s.y}).distrusted(), ElementsAre(17));
}

TEST(robust_pass, six_single_flows_with_a_gross_error_are_enough) {
  Series s = simulated(6, 1, 5);
  s.y[3] *= 1.2;
  EXPECT_THAT(fitReference({s.x, s.y}).distrusted(), ElementsAre(3));
}

TEST(robust_pass, good_points_are_hardly_ever_named) {
  std::size_t named = 0, points = 0;
  for (unsigned seed = 100; seed < 250; ++seed) {
    const int flows = 5 + static_cast<int>(seed) % 16;
    const Series s = simulated(flows, 1 + static_cast<int>(seed) % 3, seed);
    named += fitReference({s.x, s.y}).distrusted().size();
    points += s.x.size();
  }
  EXPECT_LE(named, points / 500) << points;
}

TEST(robust_pass, at_most_a_fifth_of_the_points_is_left_out) {
  Series s = simulated(10, 1, 6);
  for (const std::size_t i : {1, 4, 6, 8}) s.y[i] *= 1.05;
  const ReferenceCurve curve = fitReference({s.x, s.y});
  EXPECT_LE(curve.distrusted().size(), 2U);
}

// Every 61st reading, too high and too low by turns.
Series withEvery61stBad(int flows, unsigned seed) {
  Series s = simulated(flows, 1, seed);
  for (std::size_t i = 30; i < s.y.size(); i += 61) s.y[i] *= i % 2 == 0 ? 1.006 : 0.994;
  return s;
}

std::vector<std::size_t> every61st(std::size_t count) {
  std::vector<std::size_t> places;
  for (std::size_t i = 30; i < count; i += 61) places.push_back(i);
  return places;
}

TEST(robust_pass, a_hundred_bad_readings_of_a_long_series_are_named_and_bend_nothing) {
  const Series s = withEvery61stBad(6000, 7);
  const ReferenceCurve curve = fitReference({s.x, s.y});
  EXPECT_EQ(curve.distrusted(), every61st(6000));
  EXPECT_LT(farthestFromTruth(curve), 0.0005);
}

TEST(robust_pass, names_the_same_readings_together_as_one_by_one) {
  const Series s = withEvery61stBad(1500, 8);
  ReferenceOptions oneByOne;
  oneByOne.distrust.mostInRound = 0;
  EXPECT_EQ(fitReference({s.x, s.y}, oneByOne).distrusted(), every61st(1500));
  EXPECT_EQ(fitReference({s.x, s.y}).distrusted(), every61st(1500));
}

TEST(robust_pass, leaves_three_flows_where_single_readings_of_others_are_bad) {
  // Two flows of 300 readings each, and far off one reading below and one between them.
  Series s;
  std::mt19937 random(9);
  std::normal_distribution<double> noise(0, 3e-4);
  for (int i = 0; i < 600; ++i) {
    s.x.push_back(i < 300 ? 100 : 110);
    s.y.push_back(rotor(s.x.back()) * (1 + noise(random)));
  }
  for (const auto& [x, factor] : {std::pair(99.0, 1.05), std::pair(105.0, 0.95)}) {
    s.x.push_back(x);
    s.y.push_back(rotor(x) * factor);
  }
  EXPECT_EQ(fitReference({s.x, s.y}).distrusted().size(), 1U);
}

TEST(robust_pass, can_be_switched_off) {
  Series s = simulated(20, 1, 1);
  s.y[8] *= 1.008;
  EXPECT_TRUE(fitReference({s.x, s.y}, {.robust = false}).distrusted().empty());
}

}  // namespace
}  // namespace pelmora::solver::reference
