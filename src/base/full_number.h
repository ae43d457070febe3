// Numbers as text for a hash.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <string>

namespace pelmora {

// The general form with 17 significant digits: it reads back as the same number everywhere.
[[nodiscard]] PELMORA_API std::string fullNumberText(double value);

}  // namespace pelmora
