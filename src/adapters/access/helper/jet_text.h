// Texts of Access files as UTF-8.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/helper/bytes.h"

#include <string>

namespace pelmora::access {

// From UTF-16, or from the compressed form that starts with the bytes FF FE: characters below
// U+0100 are one byte each, and a zero byte switches to two bytes per character and back.
//
// Errors: Damage for a text that ends inside a character, half of a surrogate pair, the character
//         U+0000, or more than `mostUnits` units of UTF-16.
[[nodiscard]] std::string textOf(Bytes bytes, std::size_t mostUnits);

}  // namespace pelmora::access
