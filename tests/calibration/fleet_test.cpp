// Refitting with many workers: every series once, with the settings of the job.
// SPDX-License-Identifier: MIT
#include "calibration/fleet/job_rows.h"
#include "tests/calibration/fleet_fixture.h"

#include <algorithm>

namespace pelmora::calibration::test {
namespace {

using testing::HasSubstr;

TEST_F(Fleets, refit_every_series_once) {
  const FleetStatus begun = startFleet(path(), {.rangeSize = 3});
  EXPECT_EQ(begun.ranges, 3U);
  EXPECT_EQ(begun.series, allSeries);
  EXPECT_EQ(begun.state, FleetState::running);
  const FleetWork work = workOnFleet(path(), {.threads = 2});
  EXPECT_EQ(work.ranges, 3U);
  EXPECT_EQ(work.series, allSeries);
  EXPECT_EQ(work.stored, allSeries);
  EXPECT_EQ(work.lostRanges, 0U);
  EXPECT_EQ(replacements(), oneEach());
  for (std::size_t i = 0; i < allSeries; ++i)
    EXPECT_EQ(db_.series(meter_, nameOf(i)).merged, shifted(2));
  const FleetStatus ended = status();
  EXPECT_EQ(ended.state, FleetState::done);
  EXPECT_EQ(ended.done, allSeries);
  EXPECT_EQ(ended.changed, allSeries);
  EXPECT_FALSE(ended.endedAt.empty());
  const auto changed = fleetResults(path(), ended.job, {RefitResultKind::changed});
  ASSERT_EQ(changed.size(), allSeries);
  EXPECT_EQ(changed[1].task.series, "B");
  EXPECT_EQ(changed[1].task.meter.serial, "M1");
  EXPECT_NEAR(changed[1].shiftPercent, 2, 1e-9);
  EXPECT_TRUE(changed[1].isStored);
}

TEST_F(Fleets, leave_the_same_curves_as_a_refit) {
  std::vector<PointArray> expected;
  for (std::size_t i = 0; i < allSeries; ++i)
    expected.push_back(db_.repeat(db_.series(meter_, nameOf(i))).fit.curve);
  startFleet(path());
  (void)workOnFleet(path());
  for (std::size_t i = 0; i < allSeries; ++i)
    EXPECT_EQ(db_.series(meter_, nameOf(i)).curve, expected[i]);
  startFleet(path());
  const FleetWork again = workOnFleet(path());
  EXPECT_EQ(again.series, allSeries);
  EXPECT_EQ(again.stored, 0U);
}

TEST_F(Fleets, keep_the_replaced_curves_in_the_history) {
  const PointArray before = db_.series(meter_, "C").curve;
  startFleet(path());
  (void)workOnFleet(path());
  const auto entries = db_.history();
  const auto entry = std::ranges::find_if(
      entries, [](const HistoryEntry& e) { return e.command == "fleet" && e.series == "C"; });
  ASSERT_NE(entry, entries.end());
  (void)db_.restore(entry->id);
  EXPECT_EQ(db_.series(meter_, "C").curve, before);
}

TEST_F(Fleets, fit_again_what_others_have_changed_since_it_was_read) {
  const FleetStatus job = startFleet(path());
  OneWorker worker(path());
  const auto range = worker.lease(job.job);
  auto fits = worker.fitted(*range);
  db_.storeRaw(meter_, "B", 1, shifted(3));
  (void)db_.remove(meter_, "D");
  ASSERT_TRUE(worker.store(*range, fits));
  EXPECT_EQ(db_.series(meter_, "B").merged, shifted(3));
  EXPECT_EQ(db_.series(meter_, "C").merged, shifted(2));
  const auto gone = fleetResults(path(), job.job, {RefitResultKind::gone});
  ASSERT_EQ(gone.size(), 1U);
}

TEST_F(Fleets, say_which_series_got_no_curve) {
  db_.storeRaw(meter_, "Short", 1, PointArray{{1, 2}});
  const FleetStatus job = startFleet(path());
  (void)workOnFleet(path());
  const auto unusable = fleetResults(path(), job.job, {RefitResultKind::unusable});
  ASSERT_EQ(unusable.size(), 1U);
  EXPECT_EQ(unusable[0].task.series, "Short");
}

TEST_F(Fleets, change_the_settings_that_the_job_changes) {
  FleetOptions options;
  options.change.fitMin = 20;
  options.change.without = {{"Polynomial 2nd Order"}};
  options.change.choice = Choice::adjustedR2;
  options.change.maxOrder = 4;
  options.isStrict = true;
  options.changedPercent = 0.5;
  startFleet(path(), options);
  const auto job = openJob(*OneWorker(path()).session);
  ASSERT_TRUE(job);
  EXPECT_EQ(job->options.change.without, options.change.without);
  EXPECT_FALSE(job->options.change.only);
  EXPECT_EQ(job->options.change.maxOrder, 4);
  EXPECT_TRUE(job->options.isStrict);
  EXPECT_EQ(job->options.changedPercent, 0.5);
  (void)setFleetState(path(), FleetState::cancelled);
  FleetOptions fewer;
  fewer.change.fitMin = 20;
  fewer.change.choice = Choice::adjustedR2;
  startFleet(path(), fewer);
  (void)workOnFleet(path());
  const StoredSeries stored = db_.series(meter_, "A");
  EXPECT_EQ(stored.settings->FitMin, 20);
  EXPECT_EQ(stored.settings->Choice, "adjusted-r2");
}

TEST_F(Fleets, have_one_open_job) {
  EXPECT_TRUE(fleetStatus(path()).empty());
  EXPECT_EQ(workOnFleet(path()).ranges, 0U);
  const auto none = [&] { (void)setFleetState(path(), FleetState::paused); };
  EXPECT_THAT(failureOf<NotFound>(none).what(), HasSubstr("no job"));
  startFleet(path());
  const auto second = failureOf<Exists>([&] { startFleet(path()); });
  EXPECT_THAT(second.what(), HasSubstr("has not ended"));
  EXPECT_THAT(second.remedy(), HasSubstr("cancel"));
}

TEST_F(Fleets, refuse_the_job_of_another_version) {
  startFleet(path());
  db_.connection()->execute("Update pelmora_fleet_job set Version='0.0.9'");
  const auto failure = failureOf<Unusable>([&] { (void)workOnFleet(path()); });
  EXPECT_THAT(failure.what(), HasSubstr("0.0.9"));
  EXPECT_THAT(failure.remedy(), HasSubstr("same version"));
}

TEST_F(Fleets, say_how_fast_they_are) {
  startFleet(path(), {.rangeSize = 2});
  EXPECT_FALSE(status().rate);
  (void)workOnFleet(path(), {.mostRanges = 2});
  const FleetStatus now = status();
  ASSERT_TRUE(now.rate);
  EXPECT_GT(*now.rate, 0);
  ASSERT_TRUE(now.secondsLeft);
  EXPECT_NEAR(*now.secondsLeft * *now.rate, static_cast<double>(allSeries - 4), 1e-6);
}

TEST(FleetsOfNothing, are_not_started) {
  const pelmora::test::ScratchFolder folder;
  (void)create(folder.file("empty.db"));
  EXPECT_THAT(failureOf<NotFound>([&] { startFleet(folder.file("empty.db")); }).what(),
              HasSubstr("no series"));
}

}  // namespace
}  // namespace pelmora::calibration::test
