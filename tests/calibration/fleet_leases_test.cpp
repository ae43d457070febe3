// The ranges of series that workers lease: each is stored once, whatever becomes of the workers.
// SPDX-License-Identifier: MIT
#include "store/reading.h"
#include "tests/calibration/fleet_fixture.h"

namespace pelmora::calibration::test {
namespace {

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

}  // namespace
}  // namespace pelmora::calibration::test
