// Texts of Access files as UTF-8.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/helper/bytes.h"

#include <string>

namespace pelmora::access {

// UTF-16, or after the bytes FF FE compressed: characters below U+0100 as one byte each, where a
// zero byte switches to two bytes and back.
//
// Errors: Damage for half a character, a half of a pair, a character U+0000, or more than
//         `mostUnits` units of UTF-16.
[[nodiscard]] std::string textOf(Bytes bytes, std::size_t mostUnits);

}  // namespace pelmora::access
