// Completion scripts for the shells, made from the description of the command line.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/description/command_description.h"

#include <string>

namespace pelmora::cli {

// Each completes commands, options, their choices and files, and asks the program itself for the
// meters and series of the database that the line names: "pelmora names meters FILE".
[[nodiscard]] std::string bashCompletion(const ProgramDescription& program);
[[nodiscard]] std::string zshCompletion(const ProgramDescription& program);
[[nodiscard]] std::string fishCompletion(const ProgramDescription& program);

// 'text' as one word for any of the three.
[[nodiscard]] std::string shellQuoted(const std::string& text);

}  // namespace pelmora::cli
