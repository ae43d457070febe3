// What somebody types at the terminal.
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace pelmora::cli {

// The next line of standard input without its end; nothing at the end of input.
// Errors: Interrupted where a signal comes first.
[[nodiscard]] std::optional<std::string> terminalAnswer();

}  // namespace pelmora::cli
