// A running helper program and the line to it.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/os/child_program.h"

#include <pelmora/error.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace pelmora::dialog {

// What goes wrong with a window: 0x80004005 with this text.
[[nodiscard]] Error windowFailure(const std::string& what);

// The program that shows a window; it ends with the object.
//
// Errors of all operations: 0x80004005, also when the program has ended.
class HelperProcess {
 public:
  using Clock = os::ChildProgram::Clock;

  explicit HelperProcess(const std::string& program);

  void send(std::string_view bytes, Clock::time_point deadline);
  // The next line without its end; empty if the deadline passes first.
  [[nodiscard]] std::optional<std::string> receiveLine(Clock::time_point deadline);

 private:
  [[nodiscard]] bool waitFor(short events, Clock::time_point deadline) const;

  os::ChildProgram program_;
  std::string received_;
};

}  // namespace pelmora::dialog
