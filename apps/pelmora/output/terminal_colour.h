// Colour on a terminal, where people want it.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <string>

namespace pelmora::cli {

enum class Colour { red, yellow, green };

// Whether `stream` is a terminal that shows colour and the user has not set NO_COLOR (no-color.org:
// any text that is not empty).
[[nodiscard]] bool showsColour(std::FILE* stream);

// `text` in bold colour where showsColour(stream), else as it is. Colours never carry what the text
// does not say.
[[nodiscard]] std::string coloured(std::FILE* stream, Colour colour, const std::string& text);

}  // namespace pelmora::cli
