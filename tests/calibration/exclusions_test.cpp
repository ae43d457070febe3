// Points that are left out of a series, and what becomes of them when points come again.
// SPDX-License-Identifier: MIT
#include "tests/calibration/excluded_rows.h"

#include <cmath>

namespace pelmora::calibration::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

TEST_F(Exclusions, an_excluded_point_leaves_the_raw_part_and_is_kept_with_its_reason) {
  const ExclusionChange change =
      db_.exclude(meter_, "K", {.part = 1, .numbers = {3}}, "  air in the line ");
  EXPECT_THAT(change.points, ElementsAre(ChangedPoint{"K", 1, 3, points_(2, 0), points_(2, 1)}));
  const StoredSeries now = stored();
  ASSERT_EQ(now.raw[0].size(), 11U);
  EXPECT_EQ(now.raw[0](2, 0), points_(3, 0));
  ASSERT_THAT(now.excluded, SizeIs(1));
  EXPECT_EQ(now.excluded[0].number, 3U);
  EXPECT_EQ(now.excluded[0].roshko, points_(2, 0));
  EXPECT_EQ(now.excluded[0].exclusion.reason, "air in the line");
  EXPECT_EQ(now.excluded[0].exclusion.excludedAt.size(), 20U);
  EXPECT_EQ(open(path()).series(meter_, "K").excluded.size(), 1U);
}

TEST_F(Exclusions, included_points_are_back_where_they_were_to_the_last_bit) {
  PointArray odd(9);  // ties, signed zero, the smallest number
  for (std::size_t i = 0; i < odd.size(); ++i) {
    odd(i, 0) = i % 2 == 0 ? 7.1 : 1.0 / 3;
    odd(i, 1) = i == 4 ? -0.0 : 5e-324;
  }
  db_.storeRaw(meter_, "Odd", 3, odd);
  const std::string before = everyRow(db_);
  (void)db_.exclude(meter_, "Odd", {.part = 3, .numbers = {9, 1, 5}}, "trial");
  (void)db_.exclude(meter_, "Odd", {.part = 3, .numbers = {4}}, "another trial");
  EXPECT_THAT(excludedNumbers(stored("Odd"), 3), ElementsAre(1, 4, 5, 9));
  (void)db_.include(meter_, "Odd", {.part = 3, .numbers = {5}});
  (void)db_.include(meter_, "Odd", {.all = true});
  EXPECT_EQ(everyRow(db_), before);
}

TEST_F(Exclusions, numbers_stay_what_they_were_while_points_go_and_come) {
  (void)db_.exclude(meter_, "K", {.part = 1, .numbers = {1, 5}}, "first");
  (void)db_.exclude(meter_, "K", {.part = 1, .numbers = {6}}, "second");
  const auto listed = db_.points(meter_, "K");
  ASSERT_THAT(listed, SizeIs(18));
  for (std::size_t i = 0; i < 12; ++i) {
    EXPECT_EQ(listed[i].number, i + 1);
    EXPECT_EQ(listed[i].roshko, points_(i, 0));
    const bool isOut = i == 0 || i == 4 || i == 5;
    EXPECT_EQ(listed[i].state == PointState::excluded, isOut) << i;
  }
  EXPECT_EQ(listed[5].exclusion->reason, "second");
  const StoredSeries now = stored();
  EXPECT_EQ(now.numberOf(1, 0), 2U);
  EXPECT_EQ(now.numberOf(1, 3), 7U);
  EXPECT_EQ(now.numberOf(2, 0), 1U);
}

TEST_F(Exclusions, ranges_mean_what_they_say) {
  const double third = points_(2, 0), tenth = points_(9, 0);
  const auto numbersOf = [&](const PointSelection& selection) {
    const Change trial = db_.begin("trial");  // not committed
    const auto excluded = db_.exclude(meter_, "K", selection, "trial");
    std::vector<std::size_t> numbers;
    for (const auto& point : excluded.points)
      numbers.push_back(point.number + 100 * static_cast<std::size_t>(point.part));
    return numbers;
  };
  EXPECT_THAT(numbersOf({.part = 1, .below = third}), ElementsAre(101, 102));
  EXPECT_THAT(numbersOf({.part = 1, .above = tenth}), ElementsAre(111, 112));
  EXPECT_THAT(numbersOf({.part = 1, .below = third, .above = tenth}),
              ElementsAre(101, 102, 111, 112));
  EXPECT_THAT(numbersOf({.between = {{third, points_(3, 0)}}}), ElementsAre(103, 104));
  EXPECT_THAT(numbersOf({.between = {{900, 1000}}}), ElementsAre(112, 201));
  EXPECT_THAT(numbersOf({.part = 2, .all = true}), SizeIs(6));
  EXPECT_THAT(stored().excluded, IsEmpty());
}

TEST_F(Exclusions, what_makes_no_sense_is_refused_and_changes_nothing) {
  const std::string before = everyRow(db_);
  const auto refused = [&](const PointSelection& selection, const std::string& reason = "why") {
    return std::string(
        failureOf<BadData>([&] { (void)db_.exclude(meter_, "K", selection, reason); }).what());
  };
  EXPECT_THAT(refused({.part = 1, .numbers = {3}}, " "), HasSubstr("reason"));
  EXPECT_THAT(refused({.part = 1, .numbers = {3, 13}}), HasSubstr("points 1 to 12"));
  EXPECT_THAT(refused({.part = 3, .numbers = {1}}), HasSubstr("the part has no points"));
  EXPECT_THAT(refused({.part = 5, .all = true}), HasSubstr("no raw part 5"));
  EXPECT_THAT(refused({.numbers = {3}}), HasSubstr("within a raw part"));
  EXPECT_THAT(refused({.part = 1}), HasSubstr("no points are selected"));
  EXPECT_THAT(refused({.below = 1}), HasSubstr("no point is in the selection"));
  EXPECT_THAT(refused({.between = {{5, 4}}}), HasSubstr("is empty"));
  EXPECT_THAT(refused({.below = std::nan("")}), HasSubstr("not finite"));
  (void)failureOf<NotFound>([&] { (void)db_.exclude(meter_, "L", {.all = true}, "why"); });
  EXPECT_EQ(everyRow(db_), before);
}

TEST_F(Exclusions, a_point_that_is_excluded_already_keeps_its_reason) {
  (void)db_.exclude(meter_, "K", {.part = 1, .numbers = {3}}, "first");
  const ExclusionChange again = db_.exclude(meter_, "K", {.part = 1, .numbers = {3}}, "second");
  EXPECT_THAT(again.points, IsEmpty());
  EXPECT_THAT(again.kept, IsEmpty());
  EXPECT_EQ(stored().excluded[0].exclusion.reason, "first");
}

TEST_F(Exclusions, the_history_brings_both_tables_back) {
  const std::string before = everyRow(db_);
  const ExclusionChange first = db_.exclude(meter_, "K", {.part = 1, .numbers = {3, 4}}, "one");
  const std::string between = everyRow(db_);
  const ExclusionChange second = db_.include(meter_, "K", {.part = 1, .numbers = {4}});
  ASSERT_THAT(first.kept, SizeIs(1));
  ASSERT_THAT(second.kept, SizeIs(1));
  const auto entries = db_.history({.serial = "M1", .series = "K"});
  EXPECT_EQ(entries.front().command, "include");
  EXPECT_EQ(entries.front().rows.at("pelmora_excluded1"), 2U);
  (void)db_.restore(second.kept[0]);
  EXPECT_EQ(everyRow(db_), between);
  (void)db_.restore(first.kept[0]);
  EXPECT_EQ(everyRow(db_), before);
}

TEST_F(Exclusions, nothing_is_excluded_until_the_change_is_committed) {
  const std::string before = everyRow(db_);
  {
    Change trial = db_.begin("exclude");
    (void)db_.exclude(meter_, "K", {.part = 1, .numbers = {3}}, "trial");
    EXPECT_THAT(stored().excluded, SizeIs(1));
  }
  EXPECT_EQ(everyRow(db_), before);
}

TEST_F(Exclusions, other_points_end_them_with_a_word) {
  (void)db_.exclude(meter_, "K", {.part = 1, .numbers = {3}}, "one");
  (void)db_.exclude(meter_, "K", {.part = 2, .numbers = {2}}, "two");
  const StoredPoints other = db_.storeRaw(meter_, "K", 1, smoothPoints(13));
  ASSERT_THAT(other.dropped, SizeIs(1));
  EXPECT_EQ(other.dropped[0].point.number, 3U);
  EXPECT_EQ(other.dropped[0].reason, "one");
  EXPECT_THAT(excludedNumbers(stored()), IsEmpty());
  EXPECT_THAT(excludedNumbers(stored(), 2), ElementsAre(2));
  (void)db_.restore(other.kept);
  EXPECT_THAT(excludedNumbers(stored()), ElementsAre(3));
  EXPECT_THAT(excludedNumbers(stored(), 2), ElementsAre(2));
}

TEST_F(Exclusions, the_same_points_stored_again_leave_them_in_force) {
  (void)db_.exclude(meter_, "K", {.part = 1, .numbers = {3, 12}}, "one");
  const std::string before = everyRow(db_);
  EXPECT_EQ(db_.storeRaw(meter_, "K", 1, points_).excluded, 2U);
  EXPECT_EQ(everyRow(db_), before);
  const PointArray rest = stored().raw[0];
  EXPECT_EQ(db_.storeRaw(meter_, "K", 1, rest).excluded, 2U);
  EXPECT_EQ(everyRow(db_), before);
}

TEST_F(Exclusions, a_deleted_series_comes_back_with_them) {
  (void)db_.exclude(meter_, "K", {.part = 1, .numbers = {3}}, "one");
  const std::string before = everyRow(db_);
  const HistoryEntry entry = db_.remove(meter_, "K");
  EXPECT_EQ(entry.rows.at("pelmora_excluded1"), 1U);
  (void)db_.restore(entry.id);
  EXPECT_EQ(everyRow(db_), before);
}

TEST_F(Exclusions, an_entry_from_before_they_existed_brings_the_whole_part_back) {
  const StoredPoints other = db_.storeRaw(meter_, "K", 1, smoothPoints(13));
  db_.connection()->execute("Update pelmora_history_entry set KeptTables='raw1'");
  (void)db_.exclude(meter_, "K", {.part = 1, .numbers = {3}}, "one");
  const Restored restored = db_.restore(other.kept);
  EXPECT_EQ(stored().raw[0], points_);
  EXPECT_THAT(stored().excluded, IsEmpty());
  (void)db_.restore(restored.keptAs);
  EXPECT_THAT(excludedNumbers(stored()), ElementsAre(3));
}

// A host knows the raw tables alone.
TEST_F(Exclusions, of_points_that_another_program_has_replaced_are_not_in_force) {
  (void)db_.exclude(meter_, "K", {.part = 1, .numbers = {3}}, "one");
  db_.connection()->execute("Update raw1 set Strouhal=Strouhal+1 where seriesID=" +
                            std::to_string(stored().id));
  EXPECT_THAT(stored().excluded, IsEmpty());
  ASSERT_THAT(stored().excludedBefore, SizeIs(1));
  EXPECT_THAT(db_.points(meter_, "K"), SizeIs(17));
  const ExclusionChange next = db_.exclude(meter_, "K", {.part = 1, .numbers = {1}}, "two");
  ASSERT_THAT(next.dropped, SizeIs(1));
  EXPECT_EQ(next.dropped[0].reason, "one");
  EXPECT_THAT(stored().excludedBefore, IsEmpty());
}

}  // namespace
}  // namespace pelmora::calibration::test
