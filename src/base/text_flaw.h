// Texts that should not become names or paths, and texts in messages.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace pelmora {

enum class TextFlaw {
  none,
  malformed,     // no UTF-8
  control,       // a control character, or a separator of lines or paragraphs
  bidirectional  // turns the order of the characters around it, so that a name reads as another one
};

// Source: the Unicode property Bidi_Control.
[[nodiscard]] PELMORA_API TextFlaw flawOf(char32_t character) noexcept;
// The first one in a UTF-8 text.
[[nodiscard]] PELMORA_API TextFlaw flawOf(std::string_view text) noexcept;

// The text, or its first `most` characters and "...": what a message quotes of a field may be a
// whole file. No character is cut in two.
[[nodiscard]] PELMORA_API std::string shortened(std::string_view text, std::size_t most = 60);

}  // namespace pelmora
