// The terminal behind a standard stream: whether there is one, and what is typed there.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <optional>
#include <string>

namespace pelmora {

[[nodiscard]] bool isTerminal(std::FILE* stream) noexcept;

// The next line of standard input without its end; nothing at the end of input.
[[nodiscard]] std::optional<std::string> terminalLine();

}  // namespace pelmora
