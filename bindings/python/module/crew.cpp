// SPDX-License-Identifier: MIT
#include "bindings/python/module/crew.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace pelmora::python {
namespace {

struct Task {
  std::function<void()> work, done;
};

class Worker;

// The threads that wait. Never destroyed: they wait until the process ends.
class Crew {
 public:
  // Nothing if none waits.
  Worker* take() {
    const std::scoped_lock lock(mutex_);
    if (waiting_.empty()) return nullptr;
    Worker* const worker = waiting_.back();
    waiting_.pop_back();
    return worker;
  }
  // Whether the thread may wait.
  bool put(Worker* worker) {
    const std::scoped_lock lock(mutex_);
    if (waiting_.size() >= mostWaiting) return false;
    waiting_.push_back(worker);
    return true;
  }

 private:
  // More than most programs have calls at once, and few enough to cost nothing.
  static constexpr std::size_t mostWaiting = 4;

  std::mutex mutex_;
  std::vector<Worker*> waiting_;
};

// A thread and what it is to do next. Ends where the crew is complete without it.
class Worker {
 public:
  // Errors: std::system_error.
  static void start(Crew& crew, Task task) {
    auto worker = std::make_unique<Worker>();
    worker->task_ = std::move(task);
    Worker* const its = worker.get();
    std::thread([&crew, its] { its->run(crew); }).detach();
    (void)worker.release();  // the thread's own from here on
  }
  void give(Task task) {
    const std::scoped_lock lock(mutex_);
    task_ = std::move(task);
    given_.notify_one();
  }

 private:
  void run(Crew& crew) {
    for (bool mayWait = true; mayWait;) {
      Task task;
      {
        std::unique_lock lock(mutex_);
        given_.wait(lock, [this] { return static_cast<bool>(task_.work); });
        task = std::exchange(task_, {});
      }
      task.work();
      task.work = nullptr;
      mayWait = crew.put(this);  // before the caller goes on, so that its next call finds it
      task.done();
    }
    delete this;
  }

  std::mutex mutex_;
  std::condition_variable given_;
  Task task_;
};

std::atomic<Crew*>& crewOfProcess() {
  static std::atomic<Crew*> crew = new Crew;
  return crew;
}

}  // namespace

void inAnotherThread(std::function<void()> work, std::function<void()> done) {
  Crew& crew = *crewOfProcess();
  Task task{std::move(work), std::move(done)};
  if (Worker* const worker = crew.take()) {
    worker->give(std::move(task));
  } else {
    Worker::start(crew, std::move(task));
  }
}

// A lock of the threads that have not come along may be held for ever.
void beginWithoutThreads() { crewOfProcess() = new Crew; }

}  // namespace pelmora::python
