// The program that reads an Access file, and its messages.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/message.h"
#include "adapters/os/child_program.h"

#include <chrono>
#include <optional>
#include <string>

namespace pelmora::access {

struct ProgramSettings {
  std::string program;  // empty: where the library looks for it (os/helper_program.h)
  std::size_t memoryMegabytes = 512;
  std::size_t processorSeconds = 300;
  std::chrono::seconds silence{120};  // the longest wait for its next message
};

// Errors: Error 321 if the program ends early, exceeds one of its limits or sends an invalid
//         message; 91 if the program is missing. The descriptions name the file.
class AccessProgram {
 public:
  AccessProgram(std::string path, ProgramSettings settings);

  // The next message; a FileFailure is an error. Nothing after AllRead.
  [[nodiscard]] std::optional<Message> next();

 private:
  void receive();
  [[noreturn]] void failBecauseItEnded();

  std::string path_;
  ProgramSettings settings_;
  os::ChildProgram child_;
  std::string received_;
  std::size_t taken_ = 0;  // of received_
  bool isDone_ = false;
};

}  // namespace pelmora::access
