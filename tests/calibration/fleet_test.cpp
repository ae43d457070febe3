// Refitting with many workers: every series once, whatever becomes of the workers.
// SPDX-License-Identifier: MIT
#include "calibration/fleet/job_rows.h"
#include "calibration/fleet/range_work.h"
#include "store/reading.h"
#include "tests/calibration/service_fixture.h"

#include <pelmora/calibration/fleet.h>

#include <algorithm>
#include <map>
#include <memory>

namespace pelmora::calibration::test {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

constexpr auto longLease = 600s;

// A connection of its own, as each worker has one.
struct OneWorker {
  explicit OneWorker(const std::string& path)
      : session(std::make_shared<Session>(path, OpenOptions())), lab(session) {}

  std::optional<LeasedRange> lease(FleetJobId job) {
    return leaseRange(*session, job, "w", longLease);
  }
  std::vector<FittedSeries> fitted(const LeasedRange& range) {
    auto list = fitRange(lab, *session, range, {}, [] { return true; });
    return list ? std::move(*list) : std::vector<FittedSeries>();
  }
  std::optional<RangeCounts> store(const LeasedRange& range, std::vector<FittedSeries>& list) {
    return storeRange(lab, *session, range, {}, longLease, list);
  }

  std::shared_ptr<Session> session;
  Database lab;
};

class Fleets : public ServiceTest {
 protected:
  static constexpr std::size_t allSeries = 7;

  Fleets() : db_(lab()), meter_(db_.registerMeter("M1")) {
    for (std::size_t i = 0; i < allSeries; ++i) {
      db_.storeRaw(meter_, nameOf(i), 1, smoothPoints(12));
      (void)db_.store(db_.fit(meter_, nameOf(i)));
      db_.storeRaw(meter_, nameOf(i), 1, shifted(2));
    }
  }
  static std::string nameOf(std::size_t i) { return std::string(1, static_cast<char>('A' + i)); }
  static PointArray shifted(double percent) {
    PointArray points = smoothPoints(12);
    for (std::size_t i = 0; i < points.size(); ++i) points(i, 1) *= 1 + percent / 100;
    return points;
  }
  // How many curves of each series were replaced by workers.
  [[nodiscard]] std::map<std::string, int> replacements() const {
    std::map<std::string, int> counts;
    for (const HistoryEntry& entry : db_.history()) {
      if (entry.command == "fleet") ++counts[entry.series];
    }
    return counts;
  }
  [[nodiscard]] std::map<std::string, int> oneEach() const {
    std::map<std::string, int> counts;
    for (std::size_t i = 0; i < allSeries; ++i) counts[nameOf(i)] = 1;
    return counts;
  }
  // As if that much time had gone by without a sign of their workers.
  void letLeasesEnd() const {
    db_.connection()->execute("Update pelmora_fleet_range set LeaseEnds=0 where State=1");
  }
  [[nodiscard]] FleetStatus status() const { return fleetStatus(path()).front(); }

  Database db_;
  Meter meter_;
};

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

TEST_F(Fleets, get_the_range_back_of_a_worker_that_is_stopped_while_it_reads) {
  db_.storeRaw(meter_, "A", 1, smoothPoints(30000));
  const FleetJobId job = startFleet(path()).job;
  const auto isLeased = [&] {
    return !readRows(*db_.connection(), "Select State from pelmora_fleet_range where State=1")
                ->atEnd();
  };
  FleetWorkerOptions options;
  options.open.patience.stopRequested = isLeased;
  const FleetWork work = workOnFleet(path(), options);
  EXPECT_TRUE(work.isCancelled);
  EXPECT_EQ(work.series, 0U);
  EXPECT_EQ(work.lostRanges, 0U);
  EXPECT_TRUE(OneWorker(path()).lease(job));
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

TEST_F(Fleets, store_nothing_of_a_worker_that_wakes_up_after_another_one_has_stored) {
  const FleetStatus job = startFleet(path());
  OneWorker frozen(path()), other(path());
  const auto first = frozen.lease(job.job);
  ASSERT_TRUE(first);
  auto fits = frozen.fitted(*first);
  ASSERT_EQ(fits.size(), allSeries);
  EXPECT_FALSE(other.lease(job.job));
  letLeasesEnd();
  const auto second = other.lease(job.job);
  ASSERT_TRUE(second);
  EXPECT_EQ(second->id, first->id);
  EXPECT_GT(second->token, first->token);
  auto otherFits = other.fitted(*second);
  ASSERT_TRUE(other.store(*second, otherFits));
  EXPECT_FALSE(frozen.store(*first, fits));
  EXPECT_EQ(replacements(), oneEach());
  EXPECT_EQ(status().done, allSeries);
}

TEST_F(Fleets, store_nothing_of_a_worker_whose_range_another_one_has_taken) {
  const FleetStatus job = startFleet(path());
  OneWorker frozen(path()), other(path());
  const auto first = frozen.lease(job.job);
  auto fits = frozen.fitted(*first);
  letLeasesEnd();
  const auto second = other.lease(job.job);
  ASSERT_TRUE(second);
  EXPECT_FALSE(frozen.store(*first, fits));
  EXPECT_FALSE(extendLease(*frozen.session, *first, longLease));
  EXPECT_TRUE(replacements().empty());
  EXPECT_EQ(status().done, 0U);
  auto otherFits = other.fitted(*second);
  EXPECT_TRUE(other.store(*second, otherFits));
  EXPECT_EQ(replacements(), oneEach());
}

TEST_F(Fleets, store_the_same_lease_once) {
  const FleetStatus job = startFleet(path());
  OneWorker worker(path());
  const auto range = worker.lease(job.job);
  auto fits = worker.fitted(*range);
  auto again = fits;
  EXPECT_TRUE(worker.store(*range, fits));
  EXPECT_FALSE(worker.store(*range, again));
  EXPECT_EQ(replacements(), oneEach());
}

TEST_F(Fleets, have_one_result_for_each_series) {
  startFleet(path());
  (void)workOnFleet(path());
  EXPECT_THROW(db_.connection()->execute("Insert into pelmora_fleet_result (JobID, SeriesID) "
                                         "select JobID, SeriesID from pelmora_fleet_result"),
               Error);
}

TEST_F(Fleets, let_a_late_worker_store_as_long_as_nobody_else_has_taken_its_range) {
  const FleetStatus job = startFleet(path());
  OneWorker late(path());
  const auto range = late.lease(job.job);
  auto fits = late.fitted(*range);
  letLeasesEnd();
  EXPECT_EQ(status().abandonedRanges, 1U);
  EXPECT_TRUE(late.store(*range, fits));
  EXPECT_EQ(status().state, FleetState::done);
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

TEST_F(Fleets, lease_nothing_while_the_job_is_paused) {
  const FleetStatus job = startFleet(path(), {.rangeSize = 3});
  OneWorker worker(path());
  const auto first = worker.lease(job.job);
  auto fits = worker.fitted(*first);
  EXPECT_EQ(setFleetState(path(), FleetState::paused).state, FleetState::paused);
  EXPECT_FALSE(worker.lease(job.job));
  EXPECT_TRUE(extendLease(*worker.session, *first, longLease));
  EXPECT_TRUE(worker.store(*first, fits));
  EXPECT_EQ(setFleetState(path(), FleetState::running).state, FleetState::running);
  EXPECT_TRUE(worker.lease(job.job));
}

TEST_F(Fleets, drop_the_ranges_of_a_cancelled_job) {
  const FleetStatus job = startFleet(path());
  OneWorker worker(path());
  const auto range = worker.lease(job.job);
  auto fits = worker.fitted(*range);
  EXPECT_EQ(setFleetState(path(), FleetState::cancelled).state, FleetState::cancelled);
  EXPECT_FALSE(extendLease(*worker.session, *range, longLease));
  EXPECT_FALSE(worker.store(*range, fits));
  EXPECT_TRUE(replacements().empty());
  EXPECT_EQ(workOnFleet(path()).ranges, 0U);
  startFleet(path());
  EXPECT_EQ(workOnFleet(path()).series, allSeries);
}

TEST_F(Fleets, give_back_what_an_interrupted_worker_has_leased) {
  startFleet(path());
  std::stop_source source;
  Observer observer;
  observer.stop = source.get_token();
  OneWorker worker(path());
  const auto range = worker.lease(status().job);
  releaseRange(*worker.session, *range);
  source.request_stop();
  EXPECT_TRUE(workOnFleet(path(), {}, observer).isCancelled);
  EXPECT_TRUE(worker.lease(status().job));
}

TEST_F(Fleets, do_no_more_ranges_than_a_worker_may) {
  startFleet(path(), {.rangeSize = 1});
  EXPECT_EQ(workOnFleet(path(), {.threads = 2, .mostRanges = 3}).ranges, 3U);
  EXPECT_EQ(status().doneRanges, 3U);
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
