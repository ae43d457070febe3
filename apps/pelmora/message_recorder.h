// The component's message boxes, kept for the one error line instead of shown.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/exit_code.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::cli {

// What to answer where a requested range lies outside the raw points.
enum class RangeAnswer { abort = 3, retry = 4, ignore = 5 };

// Takes over platform().messageBox of this thread while it lives.
class MessageRecorder {
 public:
  MessageRecorder();
  ~MessageRecorder();
  MessageRecorder(const MessageRecorder&) = delete;
  MessageRecorder& operator=(const MessageRecorder&) = delete;

  // The answer to the range question; absent: abort.
  std::optional<RangeAnswer> rangeAnswer = RangeAnswer::abort;

  // Error boxes since the last forget(), in order, each as one text without its "Error in".
  //
  // Errors: Interrupted where a signal has come, std::bad_alloc where memory has ended: an
  // operation shows both as errors of its own.
  [[nodiscard]] const std::vector<std::string>& errors() const;
  // The raw range as the range question told it, "from 1.5 to 700"; nothing where it was not asked.
  [[nodiscard]] const std::optional<std::string>& rawRange() const { return rawRange_; }
  // How that question was answered; nothing where it was not asked.
  // Errors: those of errors().
  [[nodiscard]] const std::optional<RangeAnswer>& rangeAnswered() const;
  void forget();

  // Errors: Trouble with the first error box since the last forget(); those of errors().
  void throwIfAny(ExitCode code, const std::string& doing, const std::string& remedy) const;

 private:
  void requireTrustworthy() const;
  int answer(const std::string& text, int style);

  std::function<int(const std::string&, int, const std::string&)> before_;
  std::vector<std::string> errors_;
  bool isOutOfMemory_ = false;  // for good: what followed cannot be trusted
  std::optional<std::string> rawRange_;
  std::optional<RangeAnswer> rangeAnswered_;
};

}  // namespace pelmora::cli
