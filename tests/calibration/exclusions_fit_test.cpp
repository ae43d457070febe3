// How a fit and the list of points treat excluded points.
// SPDX-License-Identifier: MIT
#include "tests/calibration/excluded_rows.h"

#include <cmath>

namespace pelmora::calibration::test {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

TEST_F(Exclusions, a_fit_leaves_them_out_and_its_curve_is_outdated_by_the_next) {
  PointArray spoiled = points_;
  spoiled(6, 1) *= 1.02;
  db_.storeRaw(meter_, "S", 1, spoiled);
  (void)db_.exclude(meter_, "S", {.part = 1, .numbers = {7}}, "misread");
  const Fit fit = db_.fit(meter_, "S");
  ASSERT_TRUE(fit.accepted()) << fit.reason();
  EXPECT_EQ(fit.merged.size(), 11U);
  (void)db_.store(fit);
  EXPECT_EQ(stored("S").age, CurveAge::current);
  (void)db_.exclude(meter_, "S", {.part = 1, .numbers = {1}}, "another");
  EXPECT_EQ(stored("S").age, CurveAge::outdated);
  (void)failureOf<Changed>([&] { (void)db_.store(fit); });
  const RefitOutcome refit = db_.refit({{meter_, "S"}});
  EXPECT_TRUE(refit.results[0].isStored);
  EXPECT_THAT(excludedNumbers(stored("S")), ElementsAre(1, 7));
  EXPECT_EQ(stored("S").merged.size(), 10U);
}

TEST_F(Exclusions, cut_points_are_numbered_in_the_whole_part) {
  PointArray upper = smoothPoints(12, 200, 2000);
  for (std::size_t i = 0; i < 3; ++i) upper(i, 1) *= 1.005;
  db_.storeRaw(meter_, "C", 1, smoothPoints(40, 10, 500));
  db_.storeRaw(meter_, "C", 2, upper);
  (void)db_.exclude(meter_, "C", {.part = 2, .numbers = {1}}, "trial");
  const Fit fit = db_.fit(meter_, "C");
  ASSERT_THAT(fit.cut, SizeIs(1));
  EXPECT_EQ(fit.cut[0].number, 2U);
  const auto listed = db_.points(meter_, "C");
  EXPECT_EQ(listed[40].state, PointState::excluded);
  EXPECT_EQ(listed[41].state, PointState::cut);
  EXPECT_NEAR(listed[41].cutPercent.value_or(0), 0.5, 0.01);
  EXPECT_EQ(listed[42].state, PointState::used);
}

TEST_F(Exclusions, a_bad_point_stands_out_from_the_others) {
  PointArray spoiled = smoothPoints(24);
  for (std::size_t i = 0; i < spoiled.size(); ++i) spoiled(i, 1) *= i % 2 == 0 ? 1.0002 : 0.9998;
  spoiled(10, 1) *= 1.02;
  db_.storeRaw(meter_, "S", 1, spoiled);
  const auto listed = db_.points(meter_, "S");
  ASSERT_THAT(listed, SizeIs(24));
  for (const RawPoint& point : listed) {
    ASSERT_TRUE(point.sigmas) << point.number;
    EXPECT_EQ(std::abs(*point.sigmas) > 8, point.number == 11) << point.number;
    EXPECT_EQ(point.isDistrusted, point.number == 11) << point.number;
    EXPECT_FALSE(point.residualPercent);
  }
}

TEST_F(Exclusions, a_point_that_the_stored_curve_was_fitted_without_is_not_listed_as_used) {
  PointArray spoiled = smoothPoints(24);
  for (std::size_t i = 0; i < spoiled.size(); ++i) spoiled(i, 1) *= i % 2 == 0 ? 1.0002 : 0.9998;
  spoiled(10, 1) *= 1.02;
  db_.storeRaw(meter_, "S", 1, spoiled);
  const auto stateOfBad = [&] { return db_.points(meter_, "S")[10].state; };
  EXPECT_EQ(stateOfBad(), PointState::used) << "no curve has left it out yet";
  (void)db_.store(db_.fit(meter_, "S", {.band = 3, .choice = Choice::adjustedR2}));
  EXPECT_EQ(stateOfBad(), PointState::used) << "this rule fits all points";
  const Fit fit = db_.fit(meter_, "S", {.choice = Choice::trusted});
  (void)db_.store(fit);
  const auto listed = db_.points(meter_, "S");
  for (std::size_t i = 0; i < listed.size(); ++i) {
    const bool isUsed = fit.trust->judged[i].use == PointUse::used;
    EXPECT_EQ(listed[i].state == PointState::distrusted, !isUsed) << i;
    EXPECT_EQ(listed[i].state == PointState::distrusted, i == 10) << i;
  }
  EXPECT_STREQ(pointStateKey(listed[10].state), "distrusted");
}

TEST_F(Exclusions, points_that_were_not_to_be_fitted_judge_no_others) {
  PointArray points = smoothPoints(24);
  for (std::size_t i = 0; i < points.size(); ++i) points(i, 1) *= i % 2 == 0 ? 1.0002 : 0.9998;
  points(0, 1) *= 0.9;
  points(1, 1) *= 0.95;
  const double lowest = (points(1, 0) + points(2, 0)) / 2;
  db_.storeRaw(meter_, "S", 1, points);
  const Fit fit = db_.fit(meter_, "S", {.fitMin = lowest, .choice = Choice::trusted});
  (void)db_.store(fit);
  const auto listed = db_.points(meter_, "S");
  EXPECT_EQ(listed[0].state, PointState::outsideRange);
  EXPECT_EQ(listed[1].state, PointState::outsideRange);
  for (std::size_t i = 2; i < listed.size(); ++i) {
    EXPECT_EQ(listed[i].state, PointState::used) << i;
    EXPECT_NEAR(listed[i].sigmas.value_or(99), fit.trust->judged[i].sigmas(), 1e-6) << i;
  }
}

TEST_F(Exclusions, a_fit_names_points_by_their_numbers_in_the_whole_part) {
  PointArray spoiled = smoothPoints(24);
  for (std::size_t i = 0; i < spoiled.size(); ++i) spoiled(i, 1) *= i % 2 == 0 ? 1.0002 : 0.9998;
  spoiled(10, 1) *= 1.02;
  db_.storeRaw(meter_, "S", 1, spoiled);
  (void)db_.exclude(meter_, "S", {.part = 1, .numbers = {2, 5}}, "trial");
  const Fit fit = db_.fit(meter_, "S", {.choice = Choice::trusted});
  ASSERT_TRUE(fit.trust);
  std::vector<std::size_t> distrusted;
  for (const JudgedPoint& point : fit.trust->judged) {
    if (point.use == PointUse::distrusted) distrusted.push_back(point.number);
  }
  EXPECT_THAT(distrusted, ElementsAre(11));
}

TEST_F(Exclusions, points_beyond_the_stored_curve_are_said_to_be) {
  (void)db_.store(db_.fit(meter_, "K", {.min = 20, .max = 900}));
  const auto listed = db_.points(meter_, "K");
  EXPECT_EQ(listed.front().state, PointState::outsideRange);
  EXPECT_FALSE(listed.front().residualPercent);
  EXPECT_EQ(listed[5].state, PointState::used);
  EXPECT_NEAR(listed[5].residualPercent.value_or(9), 0, 0.05);
}

}  // namespace
}  // namespace pelmora::calibration::test
