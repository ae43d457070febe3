// Man pages, made from the description of the command line.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/description/command_description.h"

#include <string>

namespace pelmora::cli {

// Section 1, in the macros of man(7). `date`: year-month-day.
[[nodiscard]] std::string programPage(const ProgramDescription& program, const std::string& version,
                                      const std::string& date);
// The page "pelmora-fit" of the command fit.
[[nodiscard]] std::string commandPage(const ProgramDescription& program,
                                      const CommandDescription& command, const std::string& version,
                                      const std::string& date);

}  // namespace pelmora::cli
