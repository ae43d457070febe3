// What is wrong with a command line, in words of this program: which option or command nobody
// knows, which one was meant, which one is missing. SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/trouble.h"

#include <CLI/App.hpp>

namespace pelmora::cli {

// `error`: what `app` threw as it read the arguments.
[[nodiscard]] Trouble usageTrouble(const CLI::App& app, const CLI::ParseError& error, int argc,
                                   const char* const* argv);

}  // namespace pelmora::cli
