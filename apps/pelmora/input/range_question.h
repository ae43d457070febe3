// The question about a range beyond the points, at the terminal.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/input/terminal_answer.h"

#include <pelmora/calibration/fit.h>

#include <functional>
#include <optional>
#include <string>

namespace pelmora::cli {

// Reads one line without its end; nothing at the end of input.
using LineReader = std::function<std::optional<std::string>()>;

// Writes `text` and the choice to standard error and reads lines until one names an answer by its
// letter or its word, in any case: Abort refuses the range, Retry takes that of the points, Ignore
// extrapolates. An empty line and the end of input mean Abort.
[[nodiscard]] calibration::RangePolicy askAboutRange(const std::string& text,
                                                     const LineReader& readLine = terminalAnswer);

// Whether somebody sits at the terminal who can be asked.
[[nodiscard]] bool isAnyoneAtTerminal();

}  // namespace pelmora::cli
