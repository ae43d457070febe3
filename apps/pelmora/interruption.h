// The signals that ask a run to end: noticed between two steps of its work, so that it ends as
// after any other trouble. SPDX-License-Identifier: MIT
#pragma once

#include <stop_token>
#include <thread>

namespace pelmora::cli {

// What ends a run that was asked to. No std::exception: what handles errors lets it through.
struct Interrupted {
  int signal = 0;
};

// Catches SIGINT, SIGTERM and SIGHUP while it lives, but for those that the process was started to
// ignore (nohup). A second signal ends the process at once.
class InterruptionHandlers {
 public:
  InterruptionHandlers();
  ~InterruptionHandlers();
  InterruptionHandlers(const InterruptionHandlers&) = delete;
  InterruptionHandlers& operator=(const InterruptionHandlers&) = delete;
};

// Whether one of the signals has come. Any thread may ask.
[[nodiscard]] bool isInterrupted() noexcept;

// Long work and waits call it between their steps. Errors: Interrupted.
void requireNotInterrupted();

// Requests a stop soon after one of the signals has come: a handler can only set a flag.
class StopAtSignal {
 public:
  StopAtSignal();

  [[nodiscard]] std::stop_token token() const { return source_.get_token(); }

 private:
  std::stop_source source_;
  std::jthread watch_;
};

// How a run ends that a signal has ended.
[[nodiscard]] int exitCodeOf(const Interrupted& interruption) noexcept;

}  // namespace pelmora::cli
