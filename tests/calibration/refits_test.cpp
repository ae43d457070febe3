// Fitting many stored series again.
// SPDX-License-Identifier: MIT
#include "tests/calibration/service_fixture.h"

namespace pelmora::calibration::test {
namespace {

class Refits : public ServiceTest {
 protected:
  Refits() : db_(lab()), meter_(db_.registerMeter("M1")) {
    for (const char* name : {"A", "B", "C"}) {
      db_.storeRaw(meter_, name, 1, smoothPoints(12));
      (void)db_.store(db_.fit(meter_, name));
    }
  }
  [[nodiscard]] PointArray shifted(double percent) const {
    PointArray points = smoothPoints(12);
    for (std::size_t i = 0; i < points.size(); ++i) points(i, 1) *= 1 + percent / 100;
    return points;
  }
  Database db_;
  Meter meter_;
};

TEST_F(Refits, leave_curves_alone_that_come_out_the_same) {
  const RefitOutcome outcome = db_.refit(db_.allSeries());
  ASSERT_EQ(outcome.results.size(), 3U);
  for (const RefitResult& result : outcome.results) {
    EXPECT_EQ(result.kind, RefitResultKind::kept) << result.reason;
    EXPECT_FALSE(result.isStored);
    EXPECT_EQ(result.shiftPercent, 0);
  }
  EXPECT_TRUE(outcome.kept.empty());
}

TEST_F(Refits, store_what_has_changed_and_keep_what_was_there) {
  const PointArray before = db_.series(meter_, "B").curve;
  db_.storeRaw(meter_, "B", 1, shifted(2));
  const RefitOutcome outcome = db_.refit(db_.allSeries(), {.threads = 3});
  const RefitResult& changed = outcome.results[1];
  EXPECT_EQ(changed.task.series, "B");
  EXPECT_EQ(changed.kind, RefitResultKind::changed);
  EXPECT_NEAR(changed.shiftPercent, 2, 1e-9);
  EXPECT_TRUE(changed.isStored);
  ASSERT_EQ(outcome.kept.size(), 1U);
  (void)db_.restore(outcome.kept.front());
  EXPECT_EQ(db_.series(meter_, "B").curve, before);
}

TEST_F(Refits, say_what_became_of_each_series) {
  db_.storeRaw(meter_, "D", 1, PointArray{{1, 2}});
  db_.storeRaw(meter_, "E", 1, smoothPoints(12));
  auto tasks = db_.allSeries();
  ASSERT_EQ(tasks.size(), 5U);
  (void)db_.remove(meter_, "C");
  const RefitOutcome outcome = db_.refit(tasks);
  EXPECT_EQ(outcome.results[2].kind, RefitResultKind::gone);
  EXPECT_EQ(outcome.results[3].kind, RefitResultKind::unusable);
  EXPECT_EQ(outcome.results[4].kind, RefitResultKind::added);
  EXPECT_FALSE(db_.series(meter_, "E").curve.empty());
}

TEST_F(Refits, store_nothing_in_a_dry_run) {
  const PointArray before = db_.series(meter_, "B").curve;
  db_.storeRaw(meter_, "B", 1, shifted(2));
  const RefitOutcome outcome = db_.refit(db_.allSeries(), {.isDryRun = true});
  EXPECT_EQ(outcome.results[1].kind, RefitResultKind::changed);
  EXPECT_TRUE(outcome.kept.empty());
  EXPECT_EQ(db_.series(meter_, "B").curve, before);
}

TEST_F(Refits, end_where_the_caller_asks_for_it) {
  std::stop_source source;
  source.request_stop();
  Observer observer;
  observer.stop = source.get_token();
  const RefitOutcome outcome = db_.refit(db_.allSeries(), {}, observer);
  EXPECT_TRUE(outcome.isCancelled);
}

}  // namespace
}  // namespace pelmora::calibration::test
