// The question about a range outside the raw points, at the terminal.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/message_recorder.h"
#include "apps/pelmora/input/terminal_answer.h"

#include <functional>
#include <optional>
#include <string>

namespace pelmora::cli {

// Reads one line without its end; nothing at the end of input.
using LineReader = std::function<std::optional<std::string>()>;

// Writes `text` and the choice to standard error and reads lines until one names an answer by its
// letter or its word, in any case. An empty line and the end of input mean Abort.
[[nodiscard]] RangeAnswer askAboutRange(const std::string& text,
                                        const LineReader& readLine = terminalAnswer);

}  // namespace pelmora::cli
