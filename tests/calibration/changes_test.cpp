// What is stored, what is kept of what was there before, and what happens when others write too.
// SPDX-License-Identifier: MIT
#include "tests/calibration/service_fixture.h"

#include <limits>

namespace pelmora::calibration::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Changes : public ServiceTest {
 protected:
  Changes() : db_(lab()), meter_(db_.registerMeter("M1")) {
    db_.storeRaw(meter_, "K", 1, smoothPoints(12));
  }
  Database db_;
  Meter meter_;
};

TEST_F(Changes, points_come_back_bit_by_bit) {
  const PointArray points{{0.1, 1.0 / 3}, {1e-300, -0.0}, {12345.678901234567, 5e300}};
  const StoredPoints stored = db_.storeRaw(meter_, "Odd", 4, points);
  EXPECT_TRUE(stored.isNewSeries);
  EXPECT_EQ(stored.kept, 0);
  EXPECT_EQ(db_.series(meter_, "Odd").raw[3], points);
}

TEST_F(Changes, points_that_cannot_be_stored_change_nothing) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const PointArray& points : {PointArray(), PointArray{{1, nan}}, PointArray(32768)})
    (void)failureOf<BadData>([&] { (void)db_.storeRaw(meter_, "K", 1, points); });
  for (const int part : {0, 5, -1})
    (void)failureOf<BadData>([&] { (void)db_.storeRaw(meter_, "K", part, smoothPoints(3)); });
  EXPECT_EQ(db_.series(meter_, "K").raw[0], smoothPoints(12));
}

TEST_F(Changes, a_fit_stores_nothing_until_it_is_told_to) {
  const Fit fit = db_.fit(meter_, "K");
  ASSERT_TRUE(fit.accepted()) << fit.reason();
  EXPECT_TRUE(db_.series(meter_, "K").curve.empty());
  EXPECT_EQ(db_.store(fit), 0);
  const StoredSeries stored = db_.series(meter_, "K");
  EXPECT_EQ(stored.curve, fit.curve);
  EXPECT_EQ(stored.merged, fit.merged);
  EXPECT_EQ(stored.report, fit.report);
  ASSERT_TRUE(stored.settings);
  EXPECT_EQ(stored.settings->BandPercent, 0.3);
}

TEST_F(Changes, a_curve_is_not_stored_for_points_that_have_changed) {
  const Fit fit = db_.fit(meter_, "K");
  open(path()).storeRaw(meter_, "K", 1, smoothPoints(13));
  const auto failure = failureOf<Changed>([&] { (void)db_.store(fit); });
  EXPECT_THAT(failure.what(), HasSubstr("series 'K' of meter 'M1'"));
  EXPECT_TRUE(db_.series(meter_, "K").curve.empty());
}

TEST_F(Changes, a_curve_is_not_stored_for_a_series_that_was_made_anew) {
  const Fit fit = db_.fit(meter_, "K");
  Database other = open(path());
  (void)other.remove(meter_, "K");
  (void)failureOf<Changed>([&] { (void)db_.store(fit); });
  other.storeRaw(meter_, "Another", 1, smoothPoints(12));
  (void)failureOf<Changed>([&] { (void)db_.store(fit); });
  EXPECT_TRUE(db_.series(meter_, "Another").curve.empty());
}

TEST_F(Changes, what_was_replaced_comes_back_and_goes_again) {
  const Fit before = db_.fit(meter_, "K");
  (void)db_.store(before);
  const Fit after = db_.fit(meter_, "K", {.points = 10});
  const HistoryEntryId kept = db_.store(after);
  ASSERT_NE(kept, 0);
  const Restored restored = db_.restore(kept);
  EXPECT_EQ(db_.series(meter_, "K").curve, before.curve);
  ASSERT_NE(restored.keptAs, 0);
  (void)db_.restore(restored.keptAs);
  EXPECT_EQ(db_.series(meter_, "K").curve, after.curve);
}

TEST_F(Changes, the_history_names_what_was_done) {
  (void)db_.store(db_.fit(meter_, "K"));
  (void)db_.remove(meter_, "K");
  const auto entries = db_.history({.serial = "M1"});
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0].command, "delete");
  EXPECT_EQ(entries[0].series, "K");
  EXPECT_EQ(entries[0].rows.at("raw1"), 12U);
  (void)failureOf<NotFound>([&] { (void)db_.restore(4711); });
}

TEST_F(Changes, several_operations_become_final_together_or_not_at_all) {
  {
    Change change = db_.begin("calibrate");
    (void)db_.store(db_.fit(meter_, "K"));
    (void)db_.registerMeter("M2");
  }
  EXPECT_TRUE(db_.series(meter_, "K").curve.empty());
  EXPECT_FALSE(db_.findMeter("M2"));
  {
    Change change = db_.begin("calibrate");
    (void)db_.store(db_.fit(meter_, "K"));
    (void)db_.registerMeter("M2");
    change.commit();
  }
  EXPECT_FALSE(open(path()).series(meter_, "K").curve.empty());
  EXPECT_TRUE(open(path()).findMeter("M2"));
}

TEST_F(Changes, a_failure_inside_a_change_leaves_the_rest_of_it) {
  Change change = db_.begin("calibrate");
  (void)db_.registerMeter("M2");
  (void)failureOf<NotFound>([&] { (void)db_.remove(meter_, "none"); });
  change.commit();
  EXPECT_TRUE(open(path()).findMeter("M2"));
}

TEST_F(Changes, a_deleted_calibration_comes_back_with_its_ids) {
  (void)db_.store(db_.fit(meter_, "K"));
  const StoredSeries before = db_.series(meter_, "K");
  const HistoryEntry gone = db_.remove(meter_);
  EXPECT_FALSE(db_.findMeter("M1"));
  (void)db_.restore(gone.id);
  const StoredSeries after = db_.series(db_.meter("M1"), "K");
  EXPECT_EQ(after.id, before.id);
  EXPECT_EQ(after.raw, before.raw);
  EXPECT_EQ(after.curve, before.curve);
}

}  // namespace
}  // namespace pelmora::calibration::test
