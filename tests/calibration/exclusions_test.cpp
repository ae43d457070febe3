// Points that are left out of a series, and what becomes of them when points come again.
// SPDX-License-Identifier: MIT
#include "store/connection.h"
#include "tests/calibration/service_fixture.h"
#include "tests/support/stand_export.h"

#include <pelmora/own_tables.h>

#include <cstring>
#include <fstream>

namespace pelmora::calibration::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// Every row of the raw tables and of the excluded points, bit by bit and in order.
std::string everyRow(const Database& db) {
  std::string text;
  for (const std::string table : {"raw1", "raw2", "raw3", "raw4", "pelmora_excluded1",
                                  "pelmora_excluded2", "pelmora_excluded3", "pelmora_excluded4"}) {
    text += table + "\n";
    if (!hasTable(db.connection(), table)) continue;
    const auto rows =
        db.connection()->openRecordset("Select * from [" + table + "] ORDER BY seriesID",
                                       CursorType::forwardOnly, LockType::optimistic);
    for (; !rows->atEnd(); rows->moveNext()) {
      for (std::size_t i = 0; i < rows->fieldCount(); ++i) {
        const Value& value = rows->value(i);
        char number[40];
        if (const auto* real = std::get_if<double>(&value))
          std::snprintf(number, sizeof number, "%a", *real);
        else if (const auto* whole = std::get_if<std::int64_t>(&value))
          std::snprintf(number, sizeof number, "i%lld", static_cast<long long>(*whole));
        else
          std::snprintf(number, sizeof number, "-");
        const auto* words = std::get_if<std::string>(&value);
        text += (words != nullptr ? *words : std::string(number)) + "|";
      }
      text += "\n";
    }
  }
  return text;
}

std::vector<std::size_t> excludedNumbers(const StoredSeries& series, int part = 1) {
  std::vector<std::size_t> numbers;
  for (const ExcludedPoint& point : series.excluded) {
    if (point.part == part) numbers.push_back(point.number);
  }
  return numbers;
}

class Exclusions : public ServiceTest {
 protected:
  Exclusions() : db_(lab()), meter_(db_.registerMeter("M1")) {
    db_.storeRaw(meter_, "K", 1, points_);
    db_.storeRaw(meter_, "K", 2, smoothPoints(6, 900, 3000));
  }
  [[nodiscard]] StoredSeries stored(const std::string& name = "K") const {
    return db_.series(meter_, name);
  }

  PointArray points_ = smoothPoints(12);
  Database db_;
  Meter meter_;
};

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
    std::vector<std::size_t> numbers;
    for (const auto& point : db_.exclude(meter_, "K", selection, "trial").points)
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
  for (const RawPoint& point : listed) {
    ASSERT_TRUE(point.sigmas) << point.number;
    EXPECT_EQ(std::abs(*point.sigmas) > 8, point.number == 11) << point.number;
    EXPECT_EQ(point.isDistrusted, point.number == 11) << point.number;
    EXPECT_FALSE(point.residualPercent);
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

class ExclusionsOfAStand : public ServiceTest {
 protected:
  ExclusionsOfAStand() : db_(lab()), meter_(db_.registerMeter("M1")) { import(); }

  Imported import(const std::string& firstJob = "1001", const std::string& file = {}) {
    return db_.importRuns(meter_, Stand(file.empty() ? exampleData("stand-dual-rotor.csv") : file),
                          {{firstJob, "Mineral spirit", "Ada"}, {"1002", "Glycol mix", "Ada"}},
                          {.stand = 3});
  }
  [[nodiscard]] StoredSeries stored(const std::string& name) const {
    return db_.series(meter_, name);
  }
  Database db_;
  Meter meter_;
};

TEST_F(ExclusionsOfAStand, each_point_knows_its_job_and_fluid) {
  const auto listed = db_.points(meter_, "Ratio");
  ASSERT_THAT(listed, SizeIs(48));
  EXPECT_EQ(listed[0].job, "1001");
  EXPECT_EQ(listed[0].fluid, "Mineral spirit");
  EXPECT_EQ(listed[47].job, "1002");
  (void)db_.exclude(meter_, "Ratio", {.part = 2, .numbers = {24}}, "why");
  EXPECT_EQ(stored("Ratio").excluded[0].job, "1002");
  EXPECT_EQ(db_.points(meter_, "Ratio")[47].fluid, "Glycol mix");
}

TEST_F(ExclusionsOfAStand, are_of_the_named_series_and_the_others_are_named) {
  const ExclusionChange change =
      db_.exclude(meter_, "Rotor A", {.part = 1, .numbers = {4}}, "lost pulses");
  EXPECT_THAT(change.sameReadings, ElementsAre("Rotor Sum", "Ratio"));
  EXPECT_THAT(stored("Rotor Sum").excluded, IsEmpty());
  const ExclusionChange derived = db_.exclude(meter_, "Rotor A", {.part = 1, .numbers = {4, 5}},
                                              "lost pulses", {.inDerivedSeries = true});
  EXPECT_THAT(derived.points, SizeIs(5));
  EXPECT_THAT(derived.sameReadings, IsEmpty());
  EXPECT_THAT(excludedNumbers(stored("Ratio")), ElementsAre(4, 5));
  EXPECT_THAT(stored("Rotor B").excluded, IsEmpty());
  (void)db_.include(meter_, "Rotor A", {.part = 1, .numbers = {4}},
                    {.alsoIn = {"rotor sum", "Rotor A"}});
  EXPECT_THAT(excludedNumbers(stored("Rotor Sum")), ElementsAre(5));
  EXPECT_THAT(excludedNumbers(stored("Ratio")), ElementsAre(4, 5));
}

TEST_F(ExclusionsOfAStand, survive_the_import_of_the_same_jobs) {
  (void)db_.exclude(meter_, "Rotor A", {.part = 1, .numbers = {4, 24}}, "air");
  (void)db_.exclude(meter_, "Ratio", {.part = 2, .below = 100}, "low");
  const std::string before = everyRow(db_);
  const std::size_t low = stored("Ratio").excluded.size();
  const Imported again = import();
  EXPECT_EQ(again.excludedAgain, 2 + low);
  EXPECT_THAT(again.dropped, IsEmpty());
  EXPECT_EQ(again.series[0].points[0], 22U);
  EXPECT_EQ(everyRow(db_), before);
}

TEST_F(ExclusionsOfAStand, end_with_a_word_if_another_job_comes) {
  (void)db_.exclude(meter_, "Rotor A", {.part = 1, .numbers = {4}}, "air");
  (void)db_.exclude(meter_, "Rotor A", {.part = 2, .numbers = {7}}, "air");
  const Imported other = import("1007");
  ASSERT_THAT(other.dropped, SizeIs(1));
  EXPECT_EQ(other.dropped[0].point.part, 1);
  EXPECT_EQ(other.dropped[0].job, "1001");
  EXPECT_THAT(other.dropped[0].why, HasSubstr("job 1007"));
  EXPECT_EQ(stored("Rotor A").raw[0].size(), 24U);
  EXPECT_THAT(excludedNumbers(stored("Rotor A"), 2), ElementsAre(7));
}

TEST_F(ExclusionsOfAStand, end_with_a_word_if_the_point_has_other_values) {
  (void)db_.exclude(meter_, "Rotor A", {.part = 1, .numbers = {2, 3}}, "air");
  std::ifstream from(exampleData("stand-dual-rotor.csv"));
  const std::string file = path() + ".csv";
  std::ofstream to(file);
  std::string line;
  for (int number = 0; std::getline(from, line); ++number) {
    if (number == 2) line.replace(line.find(",617,"), 5, ",618,");  // V4 of the second point
    to << line << "\n";
  }
  to.close();
  const Imported changed = import("1001", file);
  ASSERT_THAT(changed.dropped, SizeIs(1));
  EXPECT_EQ(changed.dropped[0].point.number, 2U);
  EXPECT_THAT(changed.dropped[0].why, HasSubstr("other values"));
  EXPECT_EQ(changed.excludedAgain, 1U);
  EXPECT_THAT(excludedNumbers(stored("Rotor A")), ElementsAre(3));
}

TEST_F(ExclusionsOfAStand, follow_their_job_into_another_part) {
  (void)db_.exclude(meter_, "Rotor A", {.part = 1, .numbers = {4}}, "air");
  // A run on a stand of a lower number becomes the first part.
  (void)db_.importRuns(meter_, Stand(exampleData("stand-dual-rotor.csv")),
                       {{"1007", "Third", "Ada"}}, {.stand = 1});
  EXPECT_THAT(excludedNumbers(stored("Rotor A"), 1), IsEmpty());
  EXPECT_THAT(excludedNumbers(stored("Rotor A"), 2), ElementsAre(4));
  EXPECT_EQ(stored("Rotor A").excluded[0].job, "1001");
}

}  // namespace
}  // namespace pelmora::calibration::test
