// A worker: leases ranges, fits and stores them, until the job has ended.
// SPDX-License-Identifier: MIT
#include <pelmora/calibration/fleet.h>

#include "base/server_address.h"
#include "base/version.h"
#include "calibration/fleet/job_rows.h"
#include "calibration/fleet/range_work.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

namespace pelmora::calibration {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Between two looks for a range while others have the last ones, or the job is paused.
constexpr auto betweenLooks = 1s;
// One after the other.
constexpr int mostTroubles = 10;

// What the threads of a worker have in common.
struct Shared {
  const std::string& location;
  const FleetWorkerOptions& options;
  std::stop_source stop;  // of all threads
  std::mutex mutex;
  FleetWork work;
  std::size_t begun = 0;  // ranges
  std::exception_ptr failure;
};

// One of the ranges that the worker may do at most; given back unless it is used.
class OneOfMost {
 public:
  explicit OneOfMost(Shared& shared) : shared_(shared) {
    const std::lock_guard lock(shared_.mutex);
    isThere_ = shared_.options.mostRanges == 0 || shared_.begun < shared_.options.mostRanges;
    if (isThere_) ++shared_.begun;
  }
  ~OneOfMost() {
    if (!isThere_) return;
    const std::lock_guard lock(shared_.mutex);
    --shared_.begun;
  }
  OneOfMost(const OneOfMost&) = delete;
  OneOfMost& operator=(const OneOfMost&) = delete;

  [[nodiscard]] bool isThere() const { return isThere_; }
  void use() { isThere_ = false; }

 private:
  Shared& shared_;
  bool isThere_ = false;
};

class Worker {
 public:
  Worker(Shared& shared, std::string name)
      : shared_(shared),
        name_(std::move(name)),
        session_(std::make_shared<Session>(shared.location, shared.options.open)),
        lab_(session_) {}

  // A lost connection or a server that restarts ends no worker.
  void run() {
    for (int troubles = 0; !isStopped();) {
      try {
        if (!step()) break;
        troubles = 0;
      } catch (const Cancelled&) {
        askToStop();
      } catch (const Locked&) {
        pause();  // the patience is over, not the job
      } catch (const Unusable&) {
        if (isOtherVersion_ || ++troubles > mostTroubles) throw;
        pause();
      }
    }
    if (held_) giveBack(*held_);
  }

 private:
  // Looks for a range and works on it. False at the end.
  bool step() {
    const auto job = session_->asking("looking for a job of '" + session_->location() + "'",
                                      [&] { return openJob(*session_); });
    if (!job) return false;
    requireSameVersion(*job);
    return workOn(*job);
  }

  [[nodiscard]] bool isStopped() const { return shared_.stop.stop_requested(); }
  void askToStop() {
    const std::lock_guard lock(shared_.mutex);
    shared_.work.isCancelled = true;
    shared_.stop.request_stop();
  }

  // What stops a worker may stop every statement of its own session as well.
  void giveBack(const LeasedRange& range) const {
    OpenOptions options;
    options.patience.limit = 2s;
    try {
      Session session(shared_.location, options);
      releaseRange(session, range);
    } catch (const Failure&) {  // free again when its lease has run out
    }
  }

  void requireSameVersion(const FleetJob& job) {
    isOtherVersion_ = job.version != version;
    if (!isOtherVersion_) return;
    throw Unusable({"job " + std::to_string(job.id) + " in '" + session_->location() +
                        "' was started by version " + job.version + ", and this is version " +
                        version,
                    session_->location(), "use the same version, or cancel the job"});
  }

  // False at the limit of ranges.
  bool workOn(const FleetJob& job) {
    OneOfMost one(shared_);
    if (!one.isThere()) return false;
    const auto range = leaseRange(*session_, job.id, name_, shared_.options.lease);
    if (!range) {
      pause();
    } else if (workOn(*range, job.options)) {
      one.use();
    }
    return true;
  }

  // Whether its results are stored.
  bool workOn(const LeasedRange& range, const RefitOptions& options) {
    held_ = range;
    extended_ = Clock::now();
    auto series =
        fitRange(lab_, *session_, range, options, [&] { return !isStopped() && holds(range); });
    const auto counts = series ? store(range, options, *series) : std::nullopt;
    if (!counts && isStopped()) return false;
    held_.reset();
    const std::lock_guard lock(shared_.mutex);
    FleetWork& work = shared_.work;
    if (!counts) {
      ++work.lostRanges;
      return false;
    }
    ++work.ranges;
    work.series += series->size();
    work.stored += counts->stored;
    if (shared_.options.rangeDone) shared_.options.rangeDone(work.ranges, work.series);
    return true;
  }

  // Others may write for longer than the patience lasts: the fits are kept while the lease is.
  std::optional<RangeCounts> store(const LeasedRange& range, const RefitOptions& options,
                                   std::vector<FittedSeries>& series) {
    for (;;) {
      try {
        return storeRange(lab_, *session_, range, options, shared_.options.lease, series);
      } catch (const Locked&) {
        if (isStopped() || !extendLease(*session_, range, shared_.options.lease))
          return std::nullopt;
      }
    }
  }

  // Extends the lease in time. False once it is another worker's, or the job was cancelled.
  bool holds(const LeasedRange& range) {
    if (Clock::now() - extended_ < shared_.options.lease / 4) return true;
    extended_ = Clock::now();
    return extendLease(*session_, range, shared_.options.lease);
  }

  void pause() const {
    std::mutex mutex;
    std::unique_lock lock(mutex);
    std::condition_variable_any never;
    never.wait_for(lock, shared_.stop.get_token(), betweenLooks, [] { return false; });
  }

  Shared& shared_;
  std::string name_;
  std::shared_ptr<Session> session_;
  Database lab_;
  std::optional<LeasedRange> held_;  // neither stored nor lost
  Clock::time_point extended_;
  bool isOtherVersion_ = false;
};

void runWorker(Shared& shared, const std::string& name) {
  try {
    Worker(shared, name).run();
  } catch (...) {
    const std::lock_guard lock(shared.mutex);
    if (!shared.failure) shared.failure = std::current_exception();
    shared.stop.request_stop();
  }
}

}  // namespace

FleetWork workOnFleet(const std::string& location, const FleetWorkerOptions& options,
                      const Observer& observer) {
  if (options.lease < 1s) {
    throw BadData({"a lease of less than a second is not possible", shownLocation(location),
                   "give a second or more"});
  }
  Shared shared{
      .location = location, .options = options, .stop{}, .mutex{}, .work{}, .begun = 0, .failure{}};
  const std::stop_callback stopAll(observer.stop, [&] { shared.stop.request_stop(); });
  {
    std::vector<std::jthread> threads;
    const std::size_t count = std::max<std::size_t>(1, options.threads);
    for (std::size_t i = 0; i < count; ++i) {
      threads.emplace_back(
          [&, name = count == 1 ? options.name : options.name + "." + std::to_string(i + 1)] {
            runWorker(shared, name);
          });
    }
  }
  if (shared.failure) std::rethrow_exception(shared.failure);
  if (observer.stop.stop_requested()) shared.work.isCancelled = true;
  return shared.work;
}

}  // namespace pelmora::calibration
