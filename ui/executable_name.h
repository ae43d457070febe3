// The name of the host program.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora {

// File name of the running executable, without its folder; empty where the system does not tell.
[[nodiscard]] std::string executableName();

}  // namespace pelmora
