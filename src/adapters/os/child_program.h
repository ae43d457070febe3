// A running helper program and the socket to it.
// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace pelmora::os {

// Starts a program whose standard input and output are one socket to here. It inherits nothing
// else: no open files, no blocked or ignored signals. Its standard error is discarded. It raises no
// signal here other than SIGCHLD when it ends. The destructor ends and reaps the program.
//
// Errors of all operations: std::system_error.
class ChildProgram {
 public:
  using Clock = std::chrono::steady_clock;

  explicit ChildProgram(const std::string& program, std::vector<std::string> arguments = {});
  ~ChildProgram();
  ChildProgram(const ChildProgram&) = delete;
  ChildProgram& operator=(const ChildProgram&) = delete;

  [[nodiscard]] int socket() const { return socket_; }
  // Waits until poll() finds one of `events` at the socket; false if the deadline passes first.
  [[nodiscard]] bool waitFor(short events, Clock::time_point deadline) const;
  // Call it once the program has closed its socket. The signal that ended the program; 0 if it
  // ended by itself, if the host has reaped it already, or if it is still running after a second.
  [[nodiscard]] int endingSignal();

 private:
  int socket_ = -1;
  pid_t process_ = -1;  // -1 once it is reaped
};

}  // namespace pelmora::os
