// Programs of others that a report needs: separate processes, looked for in PATH.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace pelmora::report {

struct ProgramEnd {
  int exitCode = -1;   // -1: ended by a signal
  std::string errors;  // what it wrote to standard error
};

// Runs the program to its end, without standard input and with standard output thrown away.
//
// arguments: the first one is the program's name.
// Errors: Unusable if there is no such program; `package` tells which one to install.
ProgramEnd runProgram(const std::vector<std::string>& arguments, const std::string& package);

// A folder of our own that only we can read, gone with its object.
class ScratchFolder {
 public:
  // Errors: Unusable.
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }
  // Writes a file and returns its path. Errors: Unusable.
  [[nodiscard]] std::string write(const std::string& name, const std::string& content) const;
  // The bytes of a file; empty if there is none.
  [[nodiscard]] std::string read(const std::string& name) const;

 private:
  std::string path_;
};

}  // namespace pelmora::report
