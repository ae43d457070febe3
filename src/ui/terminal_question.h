// The question of a message box in text mode: its buttons as a line, and a line as a button.
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace pelmora {

// Reads one line without its end; nothing at the end of input. An empty function: nobody is there.
using LineReader = std::function<std::optional<std::string>()>;

// The choice that a message box of this style offers, as a prompt: "[A]bort, [R]etry, [I]gnore
// (Enter: Abort)? ". Empty for a set of one button or an unknown one: there is nothing to ask.
[[nodiscard]] std::string questionText(int style);

// The button that the line means: its letter or its word, in any case; an empty line means the
// style's default button. Nothing if it means none of them.
[[nodiscard]] std::optional<int> answerOf(int style, const std::string& line);

}  // namespace pelmora
