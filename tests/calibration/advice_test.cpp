// What the service advises where a fit has no curve, or one with warnings.
// SPDX-License-Identifier: MIT
#include "tests/calibration/service_fixture.h"

#include <pelmora/calibration/advice.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace pelmora::calibration::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

PointArray withNoise(PointArray points, double sd) {
  std::mt19937 random(17);
  std::normal_distribution<double> noise(0, sd);
  for (std::size_t i = 0; i < points.size(); ++i) points(i, 1) *= 1 + noise(random);
  return points;
}

const Advice* adviceOf(const std::vector<Advice>& list, AdviceKind kind) {
  const auto found = std::ranges::find(list, kind, &Advice::kind);
  return found == list.end() ? nullptr : &*found;
}

TEST(Advice, about_one_bad_point_names_it_and_never_a_wider_band) {
  PointArray spoiled = withNoise(smoothPoints(20), 3e-4);
  spoiled(9, 1) *= 1.13;
  for (const Choice choice : {Choice::adjustedR2, Choice::trusted}) {
    const Fit fit = calibration::fit(std::vector{spoiled}, {.choice = choice});
    const auto list = adviceFor(fit);
    ASSERT_FALSE(list.empty());
    EXPECT_EQ(list[0].kind, AdviceKind::checkPoint);
    ASSERT_THAT(list[0].points, SizeIs(1));
    EXPECT_DOUBLE_EQ(list[0].points[0].roshko, spoiled(9, 0));
    EXPECT_EQ(list[0].points[0].part, 1);
    EXPECT_EQ(list[0].points[0].number, 10U);
    EXPECT_GT(list[0].points[0].sigmas(), 10);
    EXPECT_THAT(list[0].text, AllOf(HasSubstr("sigma above its neighbours"), HasSubstr("Roshko")));
    EXPECT_EQ(adviceOf(list, AdviceKind::widerBand), nullptr);
  }
}

TEST(Advice, tells_the_part_and_the_number_of_a_point_that_was_left_out) {
  PointArray spoiled = withNoise(smoothPoints(20), 3e-4);
  spoiled(9, 1) *= 1.02;
  const Fit fit = calibration::fit(std::vector{spoiled}, {.choice = Choice::trusted});
  EXPECT_TRUE(fit.accepted());
  EXPECT_THAT(adviceFor(fit)[0].text, HasSubstr("check point 10 of part 1 (Roshko "));
}

TEST(Advice, is_none_for_a_curve_without_warnings) {
  const Fit fit =
      calibration::fit(std::vector{withNoise(smoothPoints(24), 2e-4)}, {.choice = Choice::trusted});
  EXPECT_TRUE(fit.outcome.Warnings.empty());
  EXPECT_TRUE(adviceFor(fit).empty());
}

TEST(Advice, about_the_equation_that_ended_the_run_is_to_leave_it_out) {
  // The first equation nearly interpolates, ends the run and fails the band of a hundredth.
  const EquationList own =
      EquationList::parse("Bent\ta+b*log(x)+c*log(x)^2\nStraight\ta+b*log(x)\n", "text");
  const Fit fit =
      calibration::fit(std::vector{withNoise(smoothPoints(30), 5e-6)},
                       {.band = 0.0001, .choice = Choice::adjustedR2, .equations = own});
  ASSERT_FALSE(fit.accepted());
  const auto list = adviceFor(fit);
  const Advice* advice = adviceOf(list, AdviceKind::leaveOutEquation);
  ASSERT_NE(advice, nullptr);
  EXPECT_EQ(advice->equation, "Bent");
  EXPECT_THAT(advice->text, HasSubstr("leave out Bent: it ended the run before 1 equation"));
}

TEST(Advice, about_an_equation_with_a_pole_that_ended_the_run_is_given_once) {
  PointArray around = withNoise(smoothPoints(30), 2e-5);
  for (std::size_t i = 0; i < around.size(); ++i) around(i, 0) /= 100;
  const EquationList own =
      EquationList::parse("Pole\ta+b*ln(x)+c/ln(x)+d*ln(x)^2\nStraight\ta+b*log(x)\n", "text");
  const Fit fit = calibration::fit(std::vector{around},
                                   {.band = 1e-6, .choice = Choice::adjustedR2, .equations = own});
  ASSERT_FALSE(fit.accepted());
  const auto list = adviceFor(fit);
  EXPECT_EQ(adviceOf(list, AdviceKind::beginAboveOne), nullptr);
  const Advice* advice = adviceOf(list, AdviceKind::leaveOutEquation);
  ASSERT_NE(advice, nullptr);
  EXPECT_THAT(advice->text, HasSubstr("leave out Pole, which has a pole at Roshko 1: it ended"));
}

TEST(Advice, about_a_band_is_only_one_that_is_not_much_wider) {
  const PointArray noisy = withNoise(smoothPoints(40), 2e-3);
  const Fit narrow =
      calibration::fit(std::vector{noisy}, {.band = 0.01, .choice = Choice::adjustedR2});
  EXPECT_EQ(adviceOf(adviceFor(narrow), AdviceKind::widerBand), nullptr);
  const Fit close =
      calibration::fit(std::vector{noisy}, {.band = 0.25, .choice = Choice::adjustedR2});
  ASSERT_FALSE(close.accepted());
  const auto list = adviceFor(close);
  const Advice* band = adviceOf(list, AdviceKind::widerBand);
  ASSERT_NE(band, nullptr);
  EXPECT_TRUE(
      calibration::fit(std::vector{noisy}, {.band = *band->band, .choice = Choice::adjustedR2})
          .accepted());
}

TEST(Advice, says_once_what_six_equations_say) {
  PointArray spoiled = withNoise(smoothPoints(40), 3e-4);
  spoiled(20, 1) *= 1.03;
  const Fit fit = calibration::fit(std::vector{spoiled}, {.choice = Choice::adjustedR2});
  const auto rejected = rejectedTogether(fit);
  ASSERT_FALSE(rejected.empty());
  EXPECT_GE(rejected[0].names.size(), 5U);
}

TEST(Advice, names_equations_with_too_many_parameters_in_one_line) {
  PointArray six(18);
  for (std::size_t i = 0; i < six.size(); ++i) {
    const double repeat = static_cast<double>(i % 3);
    six(i, 0) = 20 * std::pow(2.0, static_cast<double>(i / 3)) * (1 + 0.003 * repeat);
    six(i, 1) = 1000 * (1 - 0.4 / six(i, 0)) * (1 + 2e-4 * std::sin(static_cast<double>(7 * i)));
  }
  const Fit fit = calibration::fit(std::vector{six}, {.choice = Choice::trusted});
  std::size_t lines = 0, names = 0;
  for (const Rejected& rejected : rejectedTogether(fit)) {
    if (rejected.why.find("parameters for 6 distinct flows") == std::string::npos) continue;
    ++lines;
    names += rejected.names.size();
  }
  EXPECT_EQ(lines, 1U);
  EXPECT_GE(names, 5U);
}

TEST(Advice, about_too_few_flows_is_to_measure_more) {
  const Fit fit = calibration::fit(std::vector{smoothPoints(3)}, {.choice = Choice::trusted});
  const auto list = adviceFor(fit);
  ASSERT_THAT(list, SizeIs(1));
  EXPECT_EQ(list[0].kind, AdviceKind::moreData);
  EXPECT_THAT(list[0].text, HasSubstr("measure at 4 or more"));
}

}  // namespace
}  // namespace pelmora::calibration::test
