// Bytes as UTF-8 text.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora {

// A text in the ANSI code page of Western systems as UTF-8. One that is well-formed UTF-8 already
// stays as it is: nearly all of those make no sense in the code page.
//
// Source: the best-fit table of Windows code page 1252, which makes controls of its five unassigned
// bytes.
[[nodiscard]] std::string utf8FromAnsi(std::string text);

}  // namespace pelmora
