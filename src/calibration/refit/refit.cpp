// Fits many series in threads and stores their curves in portions.
// SPDX-License-Identifier: MIT
#include "calibration/refit/bounded_queue.h"
#include "calibration/refit/portion.h"
#include "calibration/refit/refit_one.h"
#include "store/field_value.h"
#include "store/reading.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <thread>
#include <utility>

namespace pelmora::calibration {
namespace {

// Curves that wait to be stored, for each thread.
constexpr std::size_t waitingCurves = 8;

// What the threads of a refit have in common.
struct Work {
  const Session& session;
  const std::vector<RefitTask>& tasks;
  const RefitOptions& options;
  std::stop_token stop;
  ForeignWatch watch;
  BoundedQueue<RefitCurve> queue;
  std::atomic<std::size_t> next = 0;  // task
  // Held shared by those who read the database, alone by the one that ends a transaction: that
  // needs the file for itself, and how long depends on the disk.
  std::shared_mutex file;
};

// Takes tasks one by one and sends what became of each; ends when all are taken, a stop is
// requested or nobody receives.
void fitTasks(Work& work) {
  OpenOptions options = work.session.options();
  options.mode = Mode::read;
  const auto session = std::make_shared<Session>(work.session.address(), options);
  const Database lab(session);
  for (std::size_t index = work.next++; index < work.tasks.size() && !work.stop.stop_requested();
       index = work.next++) {
    std::shared_lock reading(work.file);
    const std::uint64_t noticed = work.watch.noticed();
    auto moment = session->moment();
    RefitReading read = readAgain(lab, *session, work.tasks[index]);
    read.curve.noticed = noticed;
    moment.reset();
    reading.unlock();  // others need not wait for the fit
    RefitCurve curve;
    try {
      curve = fitAgain(lab, std::move(read), work.options, work.stop);
    } catch (const Cancelled&) {
      return;
    }
    curve.index = index;
    if (!work.queue.send(std::move(curve))) return;
  }
}

// The threads that fit. They end before the object does, also where storing fails.
class Workers {
 public:
  explicit Workers(Work& work) : work_(work) {
    for (std::size_t i = 0; i < std::max<std::size_t>(1, work.options.threads); ++i) startThread();
  }
  ~Workers() { work_.queue.stop(); }  // the threads join behind this
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  // Nothing at the end. Errors: what ended a thread.
  std::optional<RefitCurve> next() {
    auto curve = work_.queue.receive();
    if (!curve && failure_) std::rethrow_exception(failure_);
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
          if (!failure_) failure_ = std::current_exception();
        }
        work_.queue.leave();
      });
    } catch (...) {
      work_.queue.stop();  // or those that run would wait for a receiver
      throw;
    }
  }

  Work& work_;
  std::mutex mutex_;
  std::exception_ptr failure_;  // read once all threads have left
  std::vector<std::jthread> threads_;
};

}  // namespace

std::vector<RefitTask> Database::allSeries() const {
  return session_->asking("listing the series of '" + location() + "'", [&] {
    const auto rows =
        readRows(session_->connection(),
                 "Select meter.ID, meter.SerialNumber, meter.SerialNumberAdjusted, meter.ReCalID, "
                 "series.name from meter inner join series on meter.ID = series.meterid ORDER BY "
                 "meter.SerialNumber, meter.ReCalID, series.ID");
    const auto text = [&](std::size_t field) { return toText(rows->value(field)); };
    std::vector<RefitTask> tasks;
    for (; !rows->atEnd(); rows->moveNext()) {
      tasks.push_back(
          {{text(1), text(2), calibrationNumber(rows->value(3)), toInt32(rows->value(0))},
           text(4)});
    }
    return tasks;
  });
}

RefitOutcome Database::refit(const std::vector<RefitTask>& tasks, const RefitOptions& options,
                             const Observer& observer) {
  RefitOutcome outcome;
  outcome.results.resize(tasks.size());
  for (std::size_t i = 0; i < tasks.size(); ++i) outcome.results[i].task = tasks[i];
  const std::size_t threads = std::max<std::size_t>(1, options.threads);
  Work work{.session = *session_,
            .tasks = tasks,
            .options = options,
            .stop = observer.stop,
            .watch = session_->asking("'" + location() + "' cannot be read now",
                                      [&] { return ForeignWatch(session_->connection()); }),
            .queue{waitingCurves * threads, threads},
            .file{}};
  Workers workers(work);
  Portion portion(*this, *session_, options, work.watch, work.file, outcome);
  std::size_t done = 0;
  while (auto curve = workers.next()) {
    if (curve->isToBeStored()) {
      portion.add(*std::move(curve));
    } else {
      outcome.results[curve->index] = std::move(curve->result);
    }
    if (observer.progress) observer.progress(++done, tasks.size());
    const bool goesOn = portion.isEmpty() || work.queue.isReadyBefore(portion.end());
    if (portion.isDue() || !goesOn) portion.store();
  }
  portion.store();
  outcome.isCancelled = done < tasks.size();
  return outcome;
}

}  // namespace pelmora::calibration
