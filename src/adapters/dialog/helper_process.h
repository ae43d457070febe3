// A running helper program and the line to it.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace pelmora::dialog {

// What goes wrong with a window: 0x80004005 with this text.
[[nodiscard]] Error windowFailure(const std::string& what);

// Starts a program whose standard input and output are one socket to here. It inherits nothing
// else: no open files, no blocked or ignored signals; its standard error is discarded. Nothing it
// does or suffers raises a signal here other than the SIGCHLD of its end; when the object goes, the
// program is ended and reaped.
//
// Errors of all operations: 0x80004005, also when the program has ended.
class HelperProcess {
 public:
  using Clock = std::chrono::steady_clock;

  explicit HelperProcess(const std::string& program);
  ~HelperProcess();
  HelperProcess(const HelperProcess&) = delete;
  HelperProcess& operator=(const HelperProcess&) = delete;

  void send(std::string_view bytes, Clock::time_point deadline);
  // The next line without its end; empty if the deadline passes first.
  [[nodiscard]] std::optional<std::string> receiveLine(Clock::time_point deadline);

 private:
  [[nodiscard]] bool waitFor(short events, Clock::time_point deadline) const;

  int socket_ = -1;
  pid_t process_ = -1;
  std::string received_;
};

}  // namespace pelmora::dialog
