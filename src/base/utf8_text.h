// Bytes as UTF-8 text.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <optional>
#include <string>
#include <string_view>

namespace pelmora {

// Takes the next character off the front of a text that is not empty. Nothing where the bytes there
// are not UTF-8: then one byte is taken.
[[nodiscard]] PELMORA_API std::optional<char32_t> takeUtf8Character(
    std::string_view& text) noexcept;

// codePoint: up to 0x10FFFF, and not half of a surrogate pair.
void appendUtf8(std::string& text, char32_t codePoint);

[[nodiscard]] PELMORA_API bool isUtf8(std::string_view text) noexcept;

// A text in the ANSI code page of Western systems as UTF-8. One that is well-formed UTF-8 already
// stays as it is: nearly all of those make no sense in the code page.
//
// Source: the best-fit table of Windows code page 1252, which makes controls of its five unassigned
// bytes.
[[nodiscard]] std::string utf8FromAnsi(std::string text);

}  // namespace pelmora
