// SPDX-License-Identifier: MIT
#include "apps/pelmora/refit/refit_all.h"

#include "apps/pelmora/interruption.h"
#include "apps/pelmora/last_words.h"
#include "apps/pelmora/refit/bounded_queue.h"
#include "apps/pelmora/refit/refit_task.h"
#include "apps/pelmora/refit/refit_worker.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>

namespace pelmora::cli {
namespace {

// Curves in one transaction: enough that its end, which waits for the disk, costs little each; few
// enough that what it changes stays in memory until then.
constexpr std::size_t mostCurves = 100;
// For as long others wait who want to write; then they get their turn.
constexpr std::chrono::seconds longestPortion{1};
// Curves that wait to be stored, for each thread.
constexpr std::size_t waitingCurves = 8;

void addTasks(CurveSession& session, const MeterInfo& meter, std::vector<RefitTask>& tasks) {
  try {
    for (const std::string& name : session.seriesNames(meter)) tasks.push_back({meter, name, {}});
  } catch (const Trouble& trouble) {
    if (trouble.code() != ExitCode::badInput) throw;
    tasks.push_back({meter, "", trouble});
  }
}

// The calibrations of all meters. One that cannot be looked up becomes a task with the reason; one
// that has just been deleted none.
void addAllTasks(CurveSession& session, std::vector<RefitTask>& tasks) {
  for (const std::string& serialNumber : session.serialNumbers()) {
    MeterInfo meter;
    meter.SerialNumber = serialNumber;
    try {
      for (const std::int16_t number : session.calibrations(serialNumber)) {
        meter.ReCalID = number;
        addTasks(session, session.requireMeter(serialNumber, number), tasks);
      }
    } catch (const Trouble& trouble) {
      if (trouble.code() == ExitCode::unknownName) continue;
      if (trouble.code() != ExitCode::badInput) throw;
      tasks.push_back({meter, "", trouble});
    }
  }
}

// The threads that fit. They end before the object does, also where storing fails.
class Workers {
 public:
  explicit Workers(RefitWork& work) : work_(work) {
    for (std::size_t i = 0; i < work.request.threads; ++i) {
      startThread();
    }
  }
  ~Workers() { work_.queue.stop(); }  // the threads join behind this
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  // Nothing at the end. Errors: what ended a thread.
  std::optional<RefitCurve> next() {
    auto curve = work_.queue.receive();
    if (!curve && trouble_) std::rethrow_exception(trouble_);
    return curve;
  }

 private:
  void startThread() {
    try {
      threads_.emplace_back([this] {
        try {
          fitTasks(work_);
        } catch (...) {
          const std::lock_guard lock(mutex_);
          if (!trouble_) trouble_ = std::current_exception();
        }
        work_.queue.leave();
      });
    } catch (...) {
      work_.queue.stop();  // or those that run would wait for a receiver
      throw;
    }
  }

  RefitWork& work_;
  std::mutex mutex_;
  std::exception_ptr trouble_;  // read once all threads have left
  std::vector<std::jthread> threads_;
};

// What is stored in one transaction.
class Portion {
 public:
  Portion(StoredChange& change, RefitWork& work) : change_(change), work_(work) {}

  void store(RefitCurve& curve) {
    if (curves_++ == 0) end_ = Clock::now() + longestPortion;
    storeTask(change_, work_.request, curve);
    if (curve.result.isStored) ++unfinished_;
  }
  // Finishes it where it is large, lasts long, or would last long for want of a next curve.
  void finishInTime() {
    if (curves_ == 0) return;
    if (curves_ < mostCurves && Clock::now() < end_ && work_.queue.isReadyBefore(end_)) return;
    finish();
  }
  void finish() {
    const std::lock_guard alone(work_.file);
    change_.finish();
    curves_ = 0;
    stored_ += std::exchange(unfinished_, 0);
    if (!change_.isDryRun()) noteSeriesStored(stored_, work_.request.tasks.size());
  }

 private:
  using Clock = std::chrono::steady_clock;

  StoredChange& change_;
  RefitWork& work_;
  std::size_t curves_ = 0, unfinished_ = 0, stored_ = 0;
  Clock::time_point end_;
};

}  // namespace

std::vector<RefitTask> refitTasks(CurveSession& session, const std::string& meter,
                                  std::int16_t reCalID, const std::vector<std::string>& series) {
  std::vector<RefitTask> tasks;
  if (!meter.empty()) {
    const MeterInfo one = session.requireMeter(meter, reCalID);
    if (series.empty()) addTasks(session, one, tasks);
    for (const std::string& name : series) {
      (void)session.requireSeriesID(one, name);
      tasks.push_back({one, name, {}});
    }
    return tasks;
  }
  addAllTasks(session, tasks);
  return tasks;
}

std::vector<RefitResult> refitAll(StoredChange& change, const RefitRequest& request) {
  std::vector<RefitResult> results(request.tasks.size());
  RefitWork work{.curves = change.session().curves(),
                 .request = request,
                 .queue{waitingCurves * request.threads, request.threads},
                 .file{}};
  Workers workers(work);
  Portion portion(change, work);
  std::size_t done = 0;
  while (auto curve = workers.next()) {
    requireNotInterrupted();
    if (curve->isToBeStored()) portion.store(*curve);
    results[curve->index] = std::move(curve->result);
    change.session().progress().count("Refitting", ++done, results.size());
    portion.finishInTime();
  }
  portion.finish();
  return results;
}

}  // namespace pelmora::cli
