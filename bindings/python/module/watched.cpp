// SPDX-License-Identifier: MIT
#include "bindings/python/module/watched.h"

#include "bindings/python/module/crew.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::python {
namespace {

// How long a signal may wait for its answer.
constexpr std::chrono::milliseconds signalPause{20};

struct News {
  std::vector<std::string> texts;
  std::optional<std::pair<std::size_t, std::size_t>> progress;
  bool isDone = false;

  [[nodiscard]] bool isEmpty() const { return texts.empty() && !progress; }
};

// What the working thread says to the waiting one.
class Mailbox {
 public:
  void addText(const std::string& text) {
    change([&](News& news) { news.texts.push_back(text); });
  }
  void setProgress(std::size_t done, std::size_t of) {
    change([&](News& news) { news.progress = {done, of}; });
  }
  void finish() {
    change([](News& news) { news.isDone = true; });
  }
  // Returns after a pause even if there is no news.
  News take() {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, signalPause, [&] { return news_.isDone || !news_.isEmpty(); });
    return std::exchange(news_, News{{}, {}, news_.isDone});
  }

 private:
  template <class Change>
  void change(Change&& change) {
    const std::scoped_lock lock(mutex_);
    change(news_);
    changed_.notify_one();
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  News news_;
};

void pass(const Callbacks& callbacks, const News& news) {
  for (const std::string& text : news.texts) callbacks.status(textOf(text));
  if (news.progress) callbacks.progress(news.progress->first, news.progress->second);
}

}  // namespace

void watched(const Callbacks& callbacks,
             const std::function<void(const calibration::Observer&)>& work) {
  Mailbox mailbox;
  std::stop_source stop;
  calibration::Observer observer;
  observer.stop = stop.get_token();
  if (!callbacks.status.is_none())
    observer.status = [&mailbox](const std::string& text) { mailbox.addText(text); };
  if (!callbacks.progress.is_none())
    observer.progress = [&mailbox](std::size_t done, std::size_t of) {
      mailbox.setProgress(done, of);
    };

  std::exception_ptr failure;
  std::optional<py::error_already_set> interruption;
  {
    const py::gil_scoped_release released;
    inAnotherThread(
        [&] {
          try {
            work(observer);
          } catch (...) {
            failure = std::current_exception();
          }
        },
        [&mailbox] { mailbox.finish(); });
    for (bool isDone = false; !isDone;) {
      const News news = mailbox.take();
      isDone = news.isDone;
      if (interruption || (isDone && news.isEmpty())) continue;
      const py::gil_scoped_acquire acquired;
      try {
        pass(callbacks, news);
        if (PyErr_CheckSignals() != 0) throw py::error_already_set();
      } catch (py::error_already_set& error) {
        interruption.emplace(error);
        stop.request_stop();
      }
    }
  }
  if (interruption) throw py::error_already_set(*interruption);
  if (failure) std::rethrow_exception(failure);
}

}  // namespace pelmora::python
