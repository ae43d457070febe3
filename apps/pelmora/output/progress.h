// One line of progress on standard error, only where that is a terminal.
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>

namespace pelmora::cli {

// Any thread may use it: those of a refit show their waits.
class Progress {
 public:
  Progress();
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Replaces the line; it is cut to the terminal's width.
  void show(const std::string& text);
  // A bar of work in equal steps, with the rate and the time that is left; drawn a few times a
  // second. The first call starts the clock.
  void count(const std::string& doing, std::size_t done, std::size_t total);
  void clear();
  // What the command waits for, until the end of the wait or the next line.
  void showWait(const std::string& text);
  void endWait();

 private:
  void draw(const std::string& text);
  void erase();

  std::mutex mutex_;
  const bool isTerminal_;
  bool isShown_ = false, isWait_ = false;
  std::optional<std::chrono::steady_clock::time_point> begin_, drawn_;  // of the count
};

// "Refitting [######--------] 300/1000  1500/s  0:01 left", after `seconds` of work.
[[nodiscard]] std::string progressBar(const std::string& doing, std::size_t done, std::size_t total,
                                      double seconds);

}  // namespace pelmora::cli
