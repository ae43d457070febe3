// Programs of others that a report needs: separate processes, found in PATH.
// SPDX-License-Identifier: MIT
#pragma once

#include <stop_token>
#include <string>
#include <vector>

namespace pelmora::report {

struct ProgramEnd {
  int exitCode = -1;   // -1: ended by a signal
  std::string errors;  // what it wrote to standard error
};

// Runs the program to its end, without standard input; its standard output is discarded.
//
// arguments: the first one is the program's name. A stop ends the program with Cancelled.
// Errors: Unusable if there is no such program (`package` is the one to install), and if nobody
//         knows how it ended: in a process that ignores SIGCHLD, the system forgets it.
ProgramEnd runProgram(const std::vector<std::string>& arguments, const std::string& package,
                      const std::stop_token& stop = {});

}  // namespace pelmora::report
