// The command line: parses it, runs one command, turns any trouble into one line and an exit code.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::cli {

// Returns the exit code of exit_code.h.
int run(int argc, const char* const* argv);

// Writes a command's data to standard output. Errors: Trouble unexpected where it cannot be
// written.
void printData(const std::string& text);

}  // namespace pelmora::cli
