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
// Series that a thread reads together.
constexpr std::size_t mostRead = 8;

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

  [[nodiscard]] std::size_t threads() const { return std::max<std::size_t>(1, options.threads); }
};

// The next tasks, read at one moment: looking at the file for each would take longer than reading
// it. Empty where all are taken.
std::vector<RefitReading> nextReadings(Work& work, const Database& lab, Session& session) {
  const std::size_t share = work.tasks.size() / (4 * work.threads());
  const std::size_t size = std::clamp<std::size_t>(share, 1, mostRead);
  const std::size_t begin = work.next.fetch_add(size);
  const std::size_t end = std::min(begin + size, work.tasks.size());
  std::vector<RefitReading> readings;
  if (begin >= end) return readings;
  const std::shared_lock reading(work.file);
  const std::uint64_t noticed = work.watch.noticed();
  const auto moment = session.moment();
  for (std::size_t index = begin; index < end; ++index) {
    RefitCurve& curve = readings.emplace_back(readAgain(lab, session, work.tasks[index])).curve;
    curve.index = index;
    curve.noticed = noticed;
  }
  return readings;
}

// Fits task after task and sends what became of each; ends when all are taken, a stop is requested
// or nobody receives.
void fitTasks(Work& work) {
  OpenOptions options = work.session.options();
  options.mode = Mode::read;
  const auto session = std::make_shared<Session>(work.session.address(), options);
  const Database lab(session);
  while (!work.stop.stop_requested()) {
    std::vector<RefitReading> readings = nextReadings(work, lab, *session);
    if (readings.empty()) return;
    for (RefitReading& reading : readings) {
      if (work.stop.stop_requested()) return;
      try {
        if (!work.queue.send(fitAgain(lab, std::move(reading), work.options, work.stop))) return;
      } catch (const Cancelled&) {
        return;
      }
    }
  }
}

// The threads that fit. They end before the object does, also where storing fails.
class Workers {
 public:
  explicit Workers(Work& work) : work_(work) {
    for (std::size_t i = 0; i < work.threads(); ++i) startThread();
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
