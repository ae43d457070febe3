// SPDX-License-Identifier: MIT
#include "drift/interval_advice.h"

#include "uncertainty/coverage.h"

#include <pelmora/calibration/failure.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace pelmora::drift {
namespace {

// One calibration a year: its value in per cent above 1000, and the independent uncertainty of each
// in per cent.
std::vector<Calibrated> history(const std::vector<double>& percent, double independent) {
  std::vector<Calibrated> made;
  for (std::size_t i = 0; i < percent.size(); ++i) {
    Calibrated each;
    each.years = 2020 + static_cast<double>(i);
    each.budget.value = 1000 + 10 * percent[i];
    uncertainty::BudgetRow row;
    row.contribution = 10 * independent;
    each.budget.rows.push_back(row);
    made.push_back(each);
  }
  return made;
}

TEST(interval_advice, is_the_time_until_drift_and_scatter_reach_the_limit) {
  const auto calibrations = history({0, 0.05, 0.10, 0.15, 0.20}, 0.01);
  const IntervalAdvice advice = adviseInterval(calibrations, 0.12);
  EXPECT_NEAR(advice.ratePercentPerYear, 0.05, 1e-9);
  EXPECT_NEAR(advice.dispersionPercent, 0.01, 1e-9);
  EXPECT_NEAR(advice.rateUncertainty, 0.01 / std::sqrt(10.0), 1e-9);
  const double k = uncertainty::coverageFactor(uncertainty::twoSigmaProbability, 3);
  EXPECT_DOUBLE_EQ(advice.coverageFactor, k);
  EXPECT_NEAR(k, 3.31, 5e-3);  // GUM, table G.2: 95.45 %, 3 degrees of freedom
  const double t = advice.years;
  EXPECT_NEAR(0.05 * t + k * std::hypot(0.01 / std::sqrt(10.0) * t, 0.01), 0.12, 1e-9);
  EXPECT_GT(t, 1);
  EXPECT_FALSE(advice.isCapped);
  EXPECT_EQ(advice.calibrations, 5U);
}

TEST(interval_advice, is_not_stretched_far_beyond_what_was_seen) {
  const auto calibrations = history({0, 0.001, -0.001, 0, 0.001, 0}, 0.005);
  const IntervalAdvice advice = adviseInterval(calibrations, 1);
  EXPECT_TRUE(advice.isCapped);
  EXPECT_DOUBLE_EQ(advice.years, 2);
}

TEST(interval_advice, is_none_where_the_scatter_exceeds_the_limit) {
  EXPECT_EQ(adviseInterval(history({0, 0.1, -0.1, 0.1}, 0.01), 0.1).years, 0);
  EXPECT_EQ(adviseInterval(history({0, 0, 0, 0}, 0.1), 0.1).years, 0);
}

TEST(interval_advice, takes_three_calibrations_and_a_limit) {
  EXPECT_THROW((void)adviseInterval(history({0, 0.1}, 0.01), 0.1), calibration::BadData);
  EXPECT_THROW((void)adviseInterval(history({0, 0.1, 0.1}, 0.01), 0), calibration::BadData);
  auto mixed = history({0, 0.1, 0.1}, 0.01);
  mixed[2].years = 2000;
  EXPECT_THROW((void)adviseInterval(mixed, 1), calibration::BadData);
  auto zero = history({0, 0.1, 0.1}, 0.01);
  zero[0].budget.value = 0;
  EXPECT_THROW((void)adviseInterval(zero, 1), calibration::BadData);
}

}  // namespace
}  // namespace pelmora::drift
