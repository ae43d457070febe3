// SPDX-License-Identifier: MIT
#include "apps/pelmora/interruption.h"

#include <signal.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string_view>

namespace pelmora::cli {
namespace {

constexpr std::array signals{SIGINT, SIGTERM, SIGHUP};
constexpr int firstSignalCode = 128;  // as shells count

// A handler reaches nothing but what is there for the whole process.
std::atomic<int> caught = 0;
static_assert(std::atomic<int>::is_always_lock_free);
std::array<struct sigaction, signals.size()> before{};

// Short beside what a person takes for an answer at once.
constexpr std::chrono::milliseconds betweenLooks(20);

// In a thread, so that they end the waits of another one.
void blockSignals() {
  sigset_t all;
  sigemptyset(&all);
  for (const int signal : signals) sigaddset(&all, signal);
  pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

void endAtOnce(int signal) {
  constexpr std::string_view line =
      "\npelmora: error: ended at once; what was not stored yet is undone by the next command\n";
  [[maybe_unused]] const ssize_t ignored = write(STDERR_FILENO, line.data(), line.size());
  _exit(firstSignalCode + signal);
}

}  // namespace

extern "C" {
static void pelmoraNoteSignal(int signal) {
  if (caught.exchange(signal) != 0) endAtOnce(signal);
}
}

InterruptionHandlers::InterruptionHandlers() {
  caught = 0;
  struct sigaction action {};
  action.sa_handler = pelmoraNoteSignal;  // without SA_RESTART: a wait ends
  sigemptyset(&action.sa_mask);
  for (std::size_t i = 0; i < signals.size(); ++i) {
    sigaction(signals[i], nullptr, &before[i]);
    if (before[i].sa_handler != SIG_IGN) sigaction(signals[i], &action, nullptr);
  }
}

InterruptionHandlers::~InterruptionHandlers() {
  for (std::size_t i = 0; i < signals.size(); ++i) sigaction(signals[i], &before[i], nullptr);
}

bool isInterrupted() noexcept { return caught.load(std::memory_order_relaxed) != 0; }

void requireNotInterrupted() {
  if (const int signal = caught.load(std::memory_order_relaxed)) throw Interrupted{signal};
}

StopAtSignal::StopAtSignal()
    : watch_([source = source_](const std::stop_token& isDone) mutable {
        blockSignals();
        std::mutex mutex;
        std::condition_variable_any sleep;
        std::unique_lock lock(mutex);
        while (!isDone.stop_requested() && !isInterrupted())
          sleep.wait_for(lock, isDone, betweenLooks, [] { return false; });
        if (isInterrupted()) source.request_stop();
      }) {}

int exitCodeOf(const Interrupted& interruption) noexcept {
  return firstSignalCode + interruption.signal;
}

}  // namespace pelmora::cli
