// SPDX-License-Identifier: MIT
#include "curves/curve_checks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

namespace pelmora {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// A model that is a function.
class FunctionModel : public FitModel {
 public:
  explicit FunctionModel(std::function<double(double)> f) : f_(std::move(f)) {}
  void attach(const std::shared_ptr<const FitData>&) override {}
  bool solutionFound() const override { return true; }
  FitData results() const override { return {}; }
  std::vector<double> evaluate(std::span<const double> x) const override {
    std::vector<double> y;
    for (const double value : x) y.push_back(f_(value));
    return y;
  }
  std::vector<double> sampleCurve(std::span<const double> x) const override { return evaluate(x); }
  std::vector<FitParameter> parameters() const override { return {}; }
  FitStatistics statistics() const override { return {}; }
  void writeLog(const std::string&) const override {}

 private:
  std::function<double(double)> f_;
};

std::vector<double> logSpaced(double from, double to, std::size_t count) {
  std::vector<double> x;
  for (std::size_t k = 0; k < count; ++k) {
    x.push_back(from *
                std::pow(to / from, static_cast<double>(k) / static_cast<double>(count - 1)));
  }
  return x;
}

struct Setting {
  std::function<double(double)> f;
  std::vector<double> rawX = logSpaced(0.5, 50, 24);
  double predictedFrom = 0.5, predictedTo = 50;
  std::size_t predicted = 200;
  std::size_t parameters = 7;
  double s = 0.01;
  double band = 0.3;
};

std::vector<CurveWarning> check(const Setting& setting) {
  const FunctionModel model(setting.f);
  FitStatistics statistics;
  statistics.ResidualStandardError = setting.s;
  const auto x = logSpaced(setting.predictedFrom, setting.predictedTo, setting.predicted);
  const auto y = model.evaluate(x);
  return checkCurve({model, statistics, setting.parameters, setting.rawX, x, y, setting.band});
}

std::vector<CurveWarningKind> kinds(const std::vector<CurveWarning>& warnings) {
  std::vector<CurveWarningKind> found;
  for (const auto& warning : warnings) found.push_back(warning.Kind);
  return found;
}

double smooth(double x) { return 100 + std::log(x); }

TEST(curve_checks, a_smooth_curve_has_no_warning) { EXPECT_THAT(check({smooth}), IsEmpty()); }

TEST(curve_checks, a_pole_between_points_is_found_and_placed) {
  const auto warnings = check({[](double x) { return smooth(x) + 1e-3 / std::log(x); }});
  ASSERT_FALSE(warnings.empty());
  EXPECT_EQ(warnings.front().Kind, CurveWarningKind::pole);
  EXPECT_LT(warnings.front().FromX, 1);
  EXPECT_GT(warnings.front().ToX, 1);
  EXPECT_THAT(warnings.front().Text, HasSubstr("between x = "));
}

TEST(curve_checks, a_turn_beyond_the_noise_is_an_oscillation) {
  // A bump of 0.2 in the one gap around x = 5, twenty times the noise and 0.2 % of the curve.
  const auto bump = [](double x) {
    return 100 + 0.2 * std::exp(-std::pow(std::log(x / 5) / 0.03, 2));
  };
  std::vector<double> raw = logSpaced(0.5, 4.8, 12);
  for (const double x : logSpaced(5.3, 50, 12)) raw.push_back(x);
  const auto warnings = check({bump, raw});
  ASSERT_THAT(kinds(warnings), ElementsAre(CurveWarningKind::oscillation));
  const double height = bump(5) - bump(4.8);  // above the higher end of the gap
  EXPECT_NEAR(warnings.front().Percent, height, 0.01 * height);
}

TEST(curve_checks, a_turn_within_the_noise_is_none) {
  Setting setting{[](double x) { return 100 + 0.2 * std::sin(20 * std::log(x)); }};
  setting.s = 0.2;
  EXPECT_THAT(check(setting), IsEmpty());
}

TEST(curve_checks, repeated_flows_are_one_level_each) {
  std::vector<double> raw;
  for (const double level : logSpaced(1, 100, 6)) {
    for (int repeat = 0; repeat < 5; ++repeat) raw.push_back(level * (1 + 0.002 * repeat));
  }
  EXPECT_EQ(distinctLevels(raw), 6U);
  Setting setting{smooth, raw, 1, 100};
  EXPECT_THAT(kinds(check(setting)), ElementsAre(CurveWarningKind::fewLevels));
  setting.parameters = 5;
  EXPECT_THAT(check(setting), IsEmpty());
}

TEST(curve_checks, a_level_is_as_wide_as_its_points_and_counts_them) {
  const std::vector<Level> levels = levelsOf(std::vector<double>{1, 1.01, 1.02, 10, 100, 101});
  ASSERT_EQ(levels.size(), 3U);
  EXPECT_EQ(levels[0].from, 1);
  EXPECT_EQ(levels[0].to, 1.02);
  EXPECT_EQ(levels[0].count, 3U);
  EXPECT_EQ(levels[1].from, levels[1].to);
  EXPECT_EQ(levels[2].to, 101);
  EXPECT_EQ(levels[2].count, 2U);
  EXPECT_TRUE(levelsOf({}).empty());
}

TEST(curve_checks, evenly_spread_points_are_all_levels) {
  EXPECT_EQ(distinctLevels(logSpaced(1, 1000, 57)), 57U);
}

TEST(curve_checks, prediction_beyond_the_points_is_extrapolation) {
  Setting setting{smooth};
  setting.predictedFrom = 0.4;
  setting.predictedTo = 60;
  const auto warnings = check(setting);
  ASSERT_THAT(kinds(warnings),
              ElementsAre(CurveWarningKind::extrapolation, CurveWarningKind::extrapolation));
  EXPECT_DOUBLE_EQ(warnings[0].FromX, 0.4);
  EXPECT_DOUBLE_EQ(warnings[0].ToX, 0.5);
  EXPECT_DOUBLE_EQ(warnings[1].FromX, 50);
}

TEST(curve_checks, a_coarse_table_misses_its_own_curve) {
  // Over a gap from x to 10 x, (log x) read linearly in x is off by log(5.5) - 0.5 of a decade's
  // rise.
  Setting setting{[](double x) { return 1 + std::log10(x); }};
  setting.rawX = logSpaced(1, 100, 24);
  setting.predictedFrom = 1;
  setting.predictedTo = 100;
  setting.predicted = 3;
  const auto warnings = check(setting);
  ASSERT_THAT(kinds(warnings), ElementsAre(CurveWarningKind::tableReading));
  const double exact = 1 + std::log10(5.5);
  EXPECT_NEAR(warnings.front().Percent, 100 * (exact - 1.5) / exact, 1e-9);
}

TEST(curve_checks, a_curve_that_is_not_finite_between_points_is_a_pole) {
  const auto warnings =
      check({[](double x) { return x > 1.9 && x < 2 ? std::nan("") : smooth(x); }});
  ASSERT_FALSE(warnings.empty());
  EXPECT_EQ(warnings.front().Kind, CurveWarningKind::pole);
}

}  // namespace
}  // namespace pelmora
