// What a merge says about the points that it was given.
// SPDX-License-Identifier: MIT
#include "calibration/steps/merge_parts.h"

#include "tests/support/fake_band_tester.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace pelmora::calibration::steps {

void PrintTo(const PartPoint& point, std::ostream* out) {
  *out << point.Part << '/' << point.Number << " (" << point.Roshko << ", " << point.Strouhal
       << ')';
}

namespace {

using Origins = std::vector<PartPoint>;

class merge_parts : public testing::Test {
 protected:
  MergedPoints sorted(std::int16_t part, PointArray points) const {
    MergedPoints whole = asPart(part, std::move(points));
    EXPECT_TRUE(sortPart(whole, "Rotor A"));
    return whole;
  }

  test::Journal journal_;
  test::FakeBandScript band_{journal_};
  MergeSettings settings_{false, false, "Rotor A",
                          [this] { return std::make_unique<test::FakeBandTester>(band_); }};
};

TEST_F(merge_parts, names_the_cut_points_by_the_order_that_they_were_read_in) {
  const MergedPoints merged = mergeParts(sorted(1, {{10, 100}, {1, 10}, {2, 20}}),
                                         sorted(2, {{0.5, 10}, {2.5, 10}}), settings_);
  EXPECT_EQ(merged.Points, (PointArray{{0.5, 10}, {2.5, 10}, {10, 100}}));
  EXPECT_EQ(merged.Origins, (Origins{{2, 1, 0.5, 10}, {2, 2, 2.5, 10}, {1, 1, 10, 100}}));
  EXPECT_EQ(merged.Cut, (Origins{{1, 2, 1, 10}, {1, 3, 2, 20}}));
}

TEST_F(merge_parts, keeps_the_true_roshko_of_inverted_parts) {
  settings_.Inverted = true;
  const MergedPoints merged =
      mergeParts(sorted(1, {{1, 30}, {4, 10}}), sorted(2, {{6, 5}, {5, 6}}), settings_);
  EXPECT_EQ(merged.Points, (PointArray{{1, 30}, {4, 10}, {5, 6}, {6, 5}}));
  EXPECT_EQ(merged.Origins, (Origins{{1, 1, 1, 30}, {1, 2, 4, 10}, {2, 2, 5, 6}, {2, 1, 6, 5}}));
}

TEST_F(merge_parts, of_a_ratio_curve_names_the_points_at_which_it_rises) {
  settings_.RatioCurve = true;
  const MergedPoints merged =
      mergeParts(sorted(1, {{1, 30}, {4, 10}}), sorted(2, {{2, 20}, {3, 25}}), settings_);
  EXPECT_EQ(merged.Points, (PointArray{{1, 30}, {2, 20}, {4, 10}}));
  EXPECT_EQ(merged.Cut, (Origins{{2, 2, 3, 25}}));
}

TEST_F(merge_parts, remembers_what_an_earlier_merge_has_cut) {
  MergedPoints first = mergeParts(sorted(1, {{1, 10}, {2, 20}, {10, 100}}),
                                  sorted(2, {{0.5, 10}, {2.5, 10}}), settings_);
  const Origins cut = first.Cut;
  ASSERT_EQ(cut.size(), 2U);
  const MergedPoints merged =
      mergeParts(std::move(first), sorted(3, {{20, 1}, {30, 2}}), settings_);
  EXPECT_EQ(merged.Cut, cut);
  EXPECT_EQ(merged.Origins.back(), (PartPoint{3, 2, 30, 2}));
}

TEST_F(merge_parts, throws_where_the_face_shows_a_box) {
  EXPECT_THROW((void)mergeParts(asPart(1, {}), sorted(2, {{1, 2}, {2, 3}}), settings_), Error);
  settings_.createBandTester = {};
  EXPECT_THROW(
      (void)mergeParts(sorted(1, {{1, 2}, {2, 3}}), sorted(2, {{1, 2}, {2, 3}}), settings_), Error);
}

TEST_F(merge_parts, ends_where_its_observer_throws_inside_a_sort) {
  Observer observer;
  observer.onBreath = [] { throw std::runtime_error("enough"); };
  MergedPoints part = asPart(1, {{2, 1}, {1, 2}});
  EXPECT_THROW((void)sortPart(part, "Rotor A", observer), std::runtime_error);
}

TEST_F(merge_parts, takes_parts_of_one_point_for_none) {
  MergedPoints part = asPart(1, {{2, 1}});
  EXPECT_FALSE(sortPart(part, "Rotor A"));
  EXPECT_EQ(howToJoin(PointArray(), 1), Joining::take);
  EXPECT_EQ(howToJoin(PointArray{{1, 2}, {2, 3}}, 2), Joining::merge);
  EXPECT_EQ(howToJoin(PointArray{{1, 2}}, 3), Joining::take);
  EXPECT_EQ(howToJoin(PointArray{{1, 2}}, 4), Joining::refuse);
}

}  // namespace
}  // namespace pelmora::calibration::steps
