// The name of the host program.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora {

// On Windows adapters/os fills this in.
//
// File name of the running executable, without its folder; empty if the system does not tell.
[[nodiscard]] std::string executableName();

}  // namespace pelmora
