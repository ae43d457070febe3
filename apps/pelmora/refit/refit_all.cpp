// SPDX-License-Identifier: MIT
#include "apps/pelmora/refit/refit_all.h"

#include "apps/pelmora/refit/bounded_queue.h"
#include "apps/pelmora/refit/refit_worker.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <thread>

namespace pelmora::cli {
namespace {

// Curves in one transaction: enough that its end, which waits for the disk, costs little each; few
// enough that what it changes stays in memory until then.
constexpr std::size_t portion = 100;
// Curves that wait to be stored, for each thread.
constexpr std::size_t waitingCurves = 8;

void addTasks(CurveSession& session, const MeterInfo& meter, std::vector<RefitTask>& tasks) {
  for (const std::string& name : session.seriesNames(meter)) tasks.push_back({meter, name});
}

// The threads that fit. They end before the object does, also where storing fails.
class Workers {
 public:
  explicit Workers(RefitWork& work) : work_(work) {
    for (std::size_t i = 0; i < work.request.threads; ++i) {
      threads_.emplace_back([this] {
        try {
          fitTasks(work_);
        } catch (...) {
          const std::lock_guard lock(mutex_);
          if (!trouble_) trouble_ = std::current_exception();
        }
        work_.queue.leave();
      });
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
  RefitWork& work_;
  std::mutex mutex_;
  std::exception_ptr trouble_;  // read once all threads have left
  std::vector<std::jthread> threads_;
};

void finish(StoredChange& change, RefitWork& work) {
  const std::lock_guard alone(work.file);
  change.finish();
}

}  // namespace

std::vector<RefitTask> refitTasks(CurveSession& session, const std::string& meter,
                                  std::int16_t reCalID, const std::vector<std::string>& series) {
  std::vector<RefitTask> tasks;
  if (!meter.empty()) {
    const MeterInfo one = session.requireMeter(meter, reCalID);
    if (series.empty()) addTasks(session, one, tasks);
    for (const std::string& name : series) {
      (void)session.requireSeriesID(one, name);
      tasks.push_back({one, name});
    }
    return tasks;
  }
  for (const std::string& serialNumber : session.serialNumbers()) {
    for (const std::int16_t number : session.calibrations(serialNumber)) {
      addTasks(session, session.requireMeter(serialNumber, number), tasks);
    }
  }
  return tasks;
}

std::vector<RefitResult> refitAll(StoredChange& change, const RefitRequest& request) {
  std::vector<RefitResult> results(request.tasks.size());
  RefitWork work{.path = change.session().path(),
                 .request = request,
                 .queue{waitingCurves * request.threads, request.threads},
                 .file{}};
  Workers workers(work);
  std::size_t done = 0, inPortion = 0;
  while (auto curve = workers.next()) {
    if (!curve->fit.curve.empty() && !curve->isSame) {
      storeCurve(change, curve->result.task.meter, curve->fit);
      curve->result.isStored = curve->fit.isStored;
      ++inPortion;
    }
    if (inPortion == portion) {
      finish(change, work);
      inPortion = 0;
    }
    results[curve->index] = std::move(curve->result);
    change.session().progress().count("Refitting", ++done, results.size());
  }
  finish(change, work);
  return results;
}

}  // namespace pelmora::cli
