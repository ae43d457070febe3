// The command line as its parser knows it, as data.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/description/command_description.h"

namespace CLI {
class App;
}

namespace pelmora::cli {

// In the order in which they were added; hidden commands and options are left out.
[[nodiscard]] ProgramDescription describe(const CLI::App& app);

}  // namespace pelmora::cli
