// The command line: parses it, runs one command, turns any trouble into one line and an exit code.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/output/standard_output.h"

namespace pelmora::cli {

// Returns the exit code of exit_code.h, or 128 and the signal's number where one has ended it.
int run(int argc, const char* const* argv) noexcept;

}  // namespace pelmora::cli
